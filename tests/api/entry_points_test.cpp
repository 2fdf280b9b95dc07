// The exported functions: handles, refusals and the order of release.

#include "tests/api/recorded_host.h"
#include "tests/support/log_capture.h"

#include <utility>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace ze {
namespace {

class EntryPoints : public testing::Test {
protected:
    GlRecorder gl;
    LogCapture log;
};

TEST_F(EntryPoints, ANewCoreIsEmpty) {
    const RecordedHost host("");
    const ZecRenderCore& core = *host.core;
    EXPECT_THAT((std::vector{core.pixelFormat, core.colorStandard, core.colorRange, core.width, core.height,
                             core.extra}),
                ElementsAre(-1, -1, -1, 0, 0, 0));
    EXPECT_FALSE(core.configured);
    for (int plane = 0; plane < 3; ++plane) {
        EXPECT_EQ(core.staging->planes[plane], nullptr);
        EXPECT_EQ(core.staging->pitches[plane], 0);
    }
    EXPECT_EQ(gl.calls(), "");
}

TEST_F(EntryPoints, SettersTakeOnlyHandlesOfTheirType) {
    const RecordedHost host("-5L");
    ZecEffect *beauty = host.effects[0], *other = host.effects[1], *lut = host.effects[2];
    EXPECT_EQ(other->type, 5);
    EXPECT_EQ(other->effect, nullptr);
    EXPECT_FALSE(ZecSetBeautyParams(nullptr, 1, 1));
    EXPECT_FALSE(ZecSetBeautyParams(other, 1, 1));
    EXPECT_FALSE(ZecSetLutParams(nullptr, "lut", 1));
    EXPECT_FALSE(ZecSetLutParams(other, "lut", 1));
    EXPECT_FALSE(ZecSetLutParams(beauty, "lut", 1));
    EXPECT_FALSE(ZecSetBeautyParams(lut, 1, 1));
    EXPECT_TRUE(static_cast<BeautyEffect*>(beauty->effect)->isInactive());
    EXPECT_TRUE(static_cast<CLutEffect*>(lut->effect)->isBypass());

    other->effect = beauty->effect; // the type decides, not the object
    EXPECT_FALSE(ZecSetBeautyParams(other, 1, 1));
    other->effect = nullptr;
    EXPECT_TRUE(ZecSetBeautyParams(beauty, 0, 1));
    EXPECT_FALSE(static_cast<BeautyEffect*>(beauty->effect)->isInactive());
    EXPECT_TRUE(ZecSetLutParams(lut, "no such file", 1));
    EXPECT_FALSE(static_cast<CLutEffect*>(lut->effect)->isBypass());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EntryPoints, RenderRefusesAnEmptyListAndEmptyFrames) {
    const RecordedHost host;
    const TestFrame frame(5, 3);
    ZecImage output = frame.image;
    const auto render = [&](const std::vector<ZecEffect*>& effects, int width, int height) {
        return ZecRender(host.core, effects, &frame.image, &output, 0, 0, 1, width, height, 0);
    };
    EXPECT_FALSE(render({}, 0, 3));
    EXPECT_THAT(log.texts(), ElementsAre("effect array is empty."));
    log.clear();
    for (const auto& [width, height] : {std::pair{0, 3}, {5, 0}, {-5, 3}, {5, -3}, {INT32_MIN, INT32_MIN}})
        EXPECT_FALSE(render(host.effects, width, height));
    EXPECT_THAT(log.texts(), IsEmpty());
    EXPECT_EQ(gl.calls(), "");
}

TEST_F(EntryPoints, ACoreThatNeverRenderedCannotBeDestroyed) {
    const RecordedHost host;
    for (bool hasHostContext : {false, true}) {
        if (hasHostContext)
            gl.makeHostContextCurrent();
        log.clear();
        EXPECT_FALSE(ZecDestroyRenderCore(host.core));
        EXPECT_THAT(log.texts(), ElementsAre("There is no opengl context"));
        EXPECT_NE(host.core->staging, nullptr);
    }
    EXPECT_EQ(gl.currentContext(), "hostContext hostDraw hostRead");
    EXPECT_EQ(gl.calls({"eglMakeCurrent", "eglDestroyContext"}), "");
}

TEST_F(EntryPoints, ACoreIsKeptWholeWhereItsContextCannotBeMadeCurrent) {
    RecordedHost host;
    ASSERT_TRUE(host.render());
    gl.makeHostContextCurrent();
    gl.clear();
    gl.refuse("eglMakeCurrent", 1, EGL_BAD_ACCESS);
    EXPECT_FALSE(ZecDestroyRenderCore(host.core));
    EXPECT_THAT(log.texts(), ElementsAre("There is no opengl context"));
    EXPECT_EQ(gl.glCallCount(), 0);
    EXPECT_EQ(gl.currentContext(), "hostContext hostDraw hostRead");
    EXPECT_TRUE(host.render());
}

const std::initializer_list<std::string_view> kReleases = {
    "eglMakeCurrent",   "eglDestroyContext",    "eglDestroySurface", "glDeleteProgram",
    "glDeleteTextures", "glDeleteFramebuffers", "glDeleteShader"};

const char kReleaseOfTheCore[] = R"(
    glDeleteProgram(yuvToRgb)
    glDeleteTextures(1, luma); glDeleteTextures(1, chroma); glDeleteTextures(1, packed)
    glDeleteFramebuffers(1, framebuffer)
    glDeleteTextures(1, input); glDeleteTextures(1, scratch); glDeleteTextures(1, output)
    eglDestroyContext(display, coreContext); eglDestroySurface(display, coreSurface))";

TEST_F(EntryPoints, ACoreIsReleasedInOrderAndTheCallersContextWithIt) {
    gl.labelTextures({"input", "scratch", "output", "luma", "chroma", "packed", "intermediate"});
    RecordedHost host;
    ASSERT_TRUE(host.render());
    host.deleteEffects();
    gl.makeHostContextCurrent();
    gl.clear();
    EXPECT_TRUE(ZecDestroyRenderCore(std::exchange(host.core, nullptr)));
    EXPECT_EQ(gl.calls(kReleases),
              recipe("eglMakeCurrent(display, coreSurface, coreSurface, coreContext)") +
                  recipe(kReleaseOfTheCore) +
                  recipe("eglMakeCurrent(display, hostDraw, hostDraw, hostContext)\n"
                         "eglDestroyContext(display, hostContext); eglDestroySurface(display, hostDraw)"));
    EXPECT_EQ(gl.currentContext(), "hostContext hostDraw hostDraw");
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EntryPoints, ACoreOutlivesItsContextWhileThatStaysCurrent) {
    gl.labelTextures({"input", "scratch", "output", "luma", "chroma", "packed", "intermediate"});
    RecordedHost host;
    ASSERT_TRUE(host.render());
    gl.clear();
    EXPECT_TRUE(ZecDestoryEffect(host.effects[0]));
    host.effects.clear();
    EXPECT_EQ(gl.calls(kReleases), recipe(R"(
        glDeleteProgram(blur); glDeleteTextures(1, intermediate)
        eglDestroyContext(display, coreContext); eglDestroySurface(display, coreSurface))"));
    EXPECT_EQ(gl.currentContext(), "coreContext coreSurface coreSurface");

    gl.clear();
    EXPECT_TRUE(ZecDestroyRenderCore(std::exchange(host.core, nullptr)));
    // The same context is the caller's, too: EGL refuses to destroy it again.
    EXPECT_EQ(gl.calls(kReleases),
              recipe(kReleaseOfTheCore) + recipe("eglDestroyContext(display, coreContext)\n"
                                                 "eglDestroySurface(display, coreSurface)"));
    EXPECT_EQ(gl.liveObjects(), "program mix, program rgbToYuv"); // they go with the context
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EntryPoints, AnEffectIsDestroyedOnlyWhereAContextIsCurrent) {
    RecordedHost host("-5");
    for (ZecEffect* handle : host.effects) {
        log.clear();
        EXPECT_FALSE(ZecDestoryEffect(handle));
        EXPECT_THAT(log.texts(), ElementsAre("There is no opengl context"));
    }
    EXPECT_TRUE(ZecSetBeautyParams(host.effects[0], 1, 1)); // still there
    gl.makeHostContextCurrent();
    gl.clear();
    EXPECT_TRUE(ZecDestoryEffect(host.effects[0]));
    EXPECT_TRUE(ZecDestoryEffect(host.effects[1]));
    host.effects.clear();
    EXPECT_EQ(gl.calls(kReleases), recipe(R"(
        eglDestroyContext(display, hostContext); eglDestroySurface(display, hostDraw)
        eglDestroyContext(display, hostContext); eglDestroySurface(display, hostDraw))"));
    EXPECT_EQ(gl.currentContext(), "hostContext hostDraw hostRead");
}

} // namespace
} // namespace ze
