// The exported functions: handles, refusals and the order of release.

#include "tests/api/recorded_host.h"

#include <utility>

using testing::ElementsAre;
using testing::IsEmpty;

namespace ze {
namespace {

using EntryPoints = RecordedHostTest;

TEST(Setters, TakeOnlyHandlesOfTheirType) {
    const RecordedHost host("-5L");
    ZecEffect *beauty = host.effects[0], *other = host.effects[1], *lut = host.effects[2];
    for (ZecEffect* handle : {static_cast<ZecEffect*>(nullptr), other, lut})
        EXPECT_FALSE(ZecSetBeautyParams(handle, 1, 1));
    for (ZecEffect* handle : {static_cast<ZecEffect*>(nullptr), other, beauty})
        EXPECT_FALSE(ZecSetLutParams(handle, "lut", 1));
    for (bool isSet : {false, true}) {
        EXPECT_EQ(static_cast<BeautyEffect*>(beauty->effect)->isInactive(), !isSet);
        EXPECT_EQ(static_cast<CLutEffect*>(lut->effect)->isBypass(), !isSet);
        EXPECT_TRUE(ZecSetBeautyParams(beauty, 0, 1) && ZecSetLutParams(lut, "no such file", 1));
    }
}

TEST_F(EntryPoints, RenderRefusesAnEmptyListEmptyFramesAndOtherFormatsBeforeItTouchesGl) {
    for (int format : {2, -1})
        EXPECT_FALSE(render(5, 3, format));
    const std::string message = "We only support NV12 and NV21 pixel formats right now!";
    EXPECT_THAT(log.texts(), ElementsAre(message, message));
    log.clear();
    const TestFrame frame(5, 3);
    ZecImage output = frame.image;
    const auto renderAll = [&](const std::vector<ZecEffect*>& list, int width, int height) {
        return ZecRender(core, list, &frame.image, &output, 0, 0, 1, width, height, 0);
    };
    for (const auto& [width, height] : {std::pair{0, 3}, {5, 0}, {-5, 3}, {5, INT32_MIN}})
        EXPECT_FALSE(renderAll(effects, width, height));
    EXPECT_FALSE(renderAll({}, 0, 3));
    EXPECT_THAT(log.texts(), ElementsAre("effect array is empty."));
    EXPECT_EQ(gl.calls(), "");
}

TEST_F(EntryPoints, ACoreThatNeverRenderedCannotBeDestroyed) {
    gl.makeHostContextCurrent(); // which changes nothing
    EXPECT_FALSE(ZecDestroyRenderCore(core));
    EXPECT_THAT(log.texts(), ElementsAre("There is no opengl context"));
    EXPECT_THAT((std::vector{core->pixelFormat, core->colorStandard, core->colorRange, core->width,
                             core->height, core->extra, core->staging->pitches[0]}),
                ElementsAre(-1, -1, -1, 0, 0, 0, 0));
    EXPECT_EQ(gl.currentContext(), "hostContext hostDraw hostRead");
}

TEST_F(EntryPoints, NothingHappensWhereTheCoresContextCannotBeMadeCurrent) {
    ASSERT_TRUE(render());
    gl.makeHostContextCurrent();
    for (bool destroys : {true, false}) {
        gl.clear();
        log.clear();
        gl.refuse("eglMakeCurrent", 1, EGL_BAD_ACCESS);
        EXPECT_FALSE(destroys ? ZecDestroyRenderCore(core) : render());
        EXPECT_EQ(log.texts(), std::vector<std::string>(destroys, "There is no opengl context"));
        EXPECT_EQ(gl.glCallCount(), 0);
        EXPECT_EQ(gl.currentContext(), "hostContext hostDraw hostRead");
    }
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
    for (ZecEffect* handle : host.effects) {
        host.log.clear();
        EXPECT_FALSE(ZecDestoryEffect(handle));
        EXPECT_THAT(host.log.texts(), ElementsAre("There is no opengl context"));
    }
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
