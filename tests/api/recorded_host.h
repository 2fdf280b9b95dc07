// A host of the library on top of the recording double.

#pragma once

#include "api/effect_handle.h"
#include "api/render_core.h"
#include "api/ze_beauty_effect.h"
#include "convert/color_converter.h"
#include "effects/beauty/beauty_effect.h"
#include "effects/lut/lut_effect.h"
#include "gl/egl_context.h"
#include "tests/api/test_frame.h"
#include "tests/support/gl_recorder.h"

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

/// A render core and its effects, less those that a test has destroyed and set to null or taken out. Frames
/// of 5 × 3 and one active beauty effect unless told otherwise.
struct RecordedHost {
    /// `effects` has a letter for each entry: B an active beauty effect, - an inactive one, L a new LUT
    /// effect, 5 a handle of that type, 0 a null pointer.
    explicit RecordedHost(const std::string& entries = "B") {
        for (char entry : entries) {
            const int type = entry == 'L' ? 1 : entry == '5' ? 5 : 0;
            effects.push_back(entry == '0' ? nullptr : ZecCreateEffect(type));
            if (entry == 'B')
                ZecSetBeautyParams(effects.back(), 0.5f, 0.5f);
        }
    }
    ~RecordedHost() {
        deleteEffects();
        if (!core || ZecDestroyRenderCore(core))
            return;
        std::free(core->staging->planes[0]); // it has no context and cannot be destroyed
        delete core->staging;
        delete core->converter;
        delete core->context;
        delete core;
    }
    /// Deletes them in the core's context without ending that.
    void deleteEffects() {
        if (core && core->context)
            ze::makeContextCurrent(*core->context);
        for (ZecEffect* handle : effects) {
            if (handle && handle->type == 1)
                delete static_cast<ze::CLutEffect*>(handle->effect);
            else if (handle)
                delete static_cast<ze::BeautyEffect*>(handle->effect);
            delete handle;
        }
        effects.clear();
    }
    RecordedHost(const RecordedHost&) = delete;
    RecordedHost& operator=(const RecordedHost&) = delete;

    /// Renders a frame of any content; `output` keeps it until the next one.
    bool render(int width = 5, int height = 3, int pixelFormat = 0, int standard = 0, int range = 1) {
        const TestFrame input(width, height);
        output.emplace(width, height);
        return ZecRender(core, effects, &input.image, &output->image, pixelFormat, standard, range, width,
                         height, 77);
    }

    ZecRenderCore* core = ZecCreateRenderCore();
    std::vector<ZecEffect*> effects;
    std::optional<TestFrame> output;
};
