// A host of the library on top of the recording double.

#pragma once

#include "api/effect_handle.h"
#include "api/render_core.h"
#include "api/ze_beauty_effect.h"
#include "effects/beauty/beauty_effect.h"
#include "effects/lut/lut_effect.h"
#include "tests/api/test_frame.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

/// A render core and its effects, less those that a test has destroyed and set to null or taken out.
struct RecordedHost {
    /// `entries` has a letter for each effect: B an active beauty effect, - an inactive one, L a new LUT
    /// effect, 5 a handle of that type, 0 a null pointer.
    explicit RecordedHost(const std::string& entries = "B") {
        gl.labelTextures({"input", "scratch", "output", "luma", "chroma", "packed", "intermediate"});
        for (char entry : entries) {
            const int type = entry == 'L' ? 1 : entry == '5' ? 5 : 0;
            effects.push_back(entry == '0' ? nullptr : ZecCreateEffect(type));
            if (entry == 'B')
                ZecSetBeautyParams(effects.back(), 0.5f, 0.5f);
        }
    }
    ~RecordedHost() {
        gl.clear(); // nothing fails any more
        gl.makeHostContextCurrent();
        for (ZecEffect* effect : effects)
            if (effect)
                ZecDestoryEffect(effect);
        if (!core || ZecDestroyRenderCore(core))
            return;
        gl.makeHostContextCurrent(); // it never had a context: the host's will do
        core->context = ze::snapshotCurrentContext();
        ZecDestroyRenderCore(core);
    }

    /// Renders a frame of any content.
    bool render(int width = 5, int height = 3, int pixelFormat = 0, int standard = 0, int range = 1) {
        const TestFrame input(width, height);
        TestFrame output(width, height);
        return ZecRender(core, effects, &input.image, &output.image, pixelFormat, standard, range, width,
                         height, 77);
    }

    GlRecorder gl;
    LogCapture log;
    ZecRenderCore* core = ZecCreateRenderCore();
    std::vector<ZecEffect*> effects;
};

/// A test with a host of its own that has one active beauty effect.
class RecordedHostTest : public testing::Test, protected RecordedHost {};
