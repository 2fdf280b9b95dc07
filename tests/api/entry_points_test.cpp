// The exported functions: handles, refusals and the order of release.

#include "tests/api/recorded_host.h"

#include <utility>

using testing::ElementsAre;

namespace ze {
namespace {

using EntryPoints = RecordedHostTest;

TEST(Handles, AreTakenOnlyByWhatKnowsTheirType) {
    RecordedHost host("-5L");
    ZecEffect *beauty = host.effects[0], *other = host.effects[1], *lut = host.effects[2];
    EXPECT_EQ(other->effect, nullptr);
    other->effect = &host; // which nobody may take for an effect
    for (ZecEffect* handle : {static_cast<ZecEffect*>(nullptr), other, lut})
        EXPECT_FALSE(ZecSetBeautyParams(handle, 1, 1));
    for (ZecEffect* handle : {static_cast<ZecEffect*>(nullptr), other, beauty})
        EXPECT_FALSE(ZecSetLutParams(handle, "lut", 1));
    EXPECT_FALSE(isActive(*other));
    renderEffect(*other, 1, {5, 3}, 2);
    for (bool isSet : {false, true}) {
        EXPECT_EQ(isActive(*beauty), isSet);
        EXPECT_EQ(isActive(*lut), isSet);
        EXPECT_TRUE(ZecSetBeautyParams(beauty, 0, 1));
        EXPECT_TRUE(ZecSetLutParams(lut, "no such file", 1));
    }
}

TEST_F(EntryPoints, RenderRefusesAnEmptyListEmptyFramesAndOtherFormatsBeforeItTouchesGl) {
    const TestFrame input(5, 3);
    TestFrame output(5, 3);
    const auto renderWith = [&](const std::vector<ZecEffect*>& list, int format, int width, int height) {
        return ZecRender(core, list, &input.image, &output.image, format, 0, 1, width, height, 0);
    };
    for (const auto& [width, height] : {std::pair{0, 3}, {5, 0}, {-5, 3}, {5, INT32_MIN}})
        EXPECT_FALSE(renderWith(effects, 0, width, height));
    EXPECT_THAT(log.texts(), testing::IsEmpty());
    for (int format : {2, -1})
        EXPECT_FALSE(renderWith(effects, format, 5, 3));
    EXPECT_FALSE(renderWith({}, 0, 0, 3));
    const std::string message = "We only support NV12 and NV21 pixel formats right now!";
    EXPECT_THAT(log.texts(), ElementsAre(message, message, "effect array is empty."));
    EXPECT_EQ(gl.calls(), "");
}

TEST_F(EntryPoints, NothingHappensWithoutTheCoresContext) {
    gl.makeHostContextCurrent();
    EXPECT_FALSE(ZecDestroyRenderCore(core)); // there is none yet
    ASSERT_TRUE(render());
    gl.makeHostContextCurrent();
    gl.clear();
    gl.refuse("eglMakeCurrent", 1, EGL_BAD_ACCESS);
    gl.refuse("eglMakeCurrent", 2, EGL_BAD_ACCESS);
    EXPECT_FALSE(ZecDestroyRenderCore(core));
    EXPECT_FALSE(render()); // without a message
    EXPECT_THAT(log.texts(), ElementsAre("There is no opengl context", "There is no opengl context"));
    EXPECT_THAT(gl.calls(), testing::Not(testing::HasSubstr("\ngl")));
    EXPECT_EQ(gl.currentContext(), "hostContext hostDraw hostRead");
    EXPECT_TRUE(render());
}

const std::initializer_list<std::string_view> kReleases = {"eglMakeCurrent",    "eglDestroyContext",
                                                           "eglDestroySurface", "glDeleteProgram",
                                                           "glDeleteTextures",  "glDeleteFramebuffers"};

TEST(Release, OfACoreIsInOrderAndTakesTheCallersContextAlong) {
    RecordedHost host("L"); // has nothing in the core's context
    ZecSetLutParams(host.effects[0], "no such file", 1);
    ASSERT_TRUE(host.render());
    host.gl.makeHostContextCurrent();
    host.gl.clear();
    EXPECT_TRUE(ZecDestroyRenderCore(std::exchange(host.core, nullptr)));
    EXPECT_EQ(host.gl.calls(kReleases), recipe(R"(
        eglMakeCurrent(display, coreSurface, coreSurface, coreContext)
        glDeleteProgram(yuvToRgb)
        glDeleteTextures(1, luma); glDeleteTextures(1, chroma); glDeleteTextures(1, packed)
        glDeleteFramebuffers(1, framebuffer)
        glDeleteTextures(1, input); glDeleteTextures(1, scratch); glDeleteTextures(1, output)
        eglDestroyContext(display, coreContext); eglDestroySurface(display, coreSurface)
        eglMakeCurrent(display, hostDraw, hostDraw, hostContext)
        eglDestroyContext(display, hostContext); eglDestroySurface(display, hostDraw))"));
    EXPECT_EQ(host.gl.currentContext(), "hostContext hostDraw hostDraw");
}

TEST(Release, OfAnEffectNeedsACurrentContextAndEndsIt) {
    RecordedHost host("-5");
    for (ZecEffect* handle : host.effects)
        EXPECT_FALSE(ZecDestoryEffect(handle));
    EXPECT_THAT(host.log.texts(), ElementsAre("There is no opengl context", "There is no opengl context"));
    EXPECT_TRUE(ZecSetBeautyParams(host.effects[0], 1, 1)); // still there
    host.gl.makeHostContextCurrent();
    for (ZecEffect*& handle : host.effects) {
        host.gl.clear();
        EXPECT_TRUE(ZecDestoryEffect(std::exchange(handle, nullptr)));
        EXPECT_EQ(host.gl.calls(kReleases),
                  recipe("eglDestroyContext(display, hostContext); eglDestroySurface(display, hostDraw)"));
    }
    EXPECT_EQ(host.gl.currentContext(), "hostContext hostDraw hostRead");
}

} // namespace
} // namespace ze
