// The frame pipeline: order, laziness, reuse, the effect chain, refusals.

#include "tests/api/recorded_host.h"

#include <utility>

using testing::ElementsAre;
using testing::IsEmpty;

namespace ze {
namespace {

using Strings = std::vector<std::string>;
using Pipeline = RecordedHostTest;

TEST(Allocation, AFrameNeedsNothingButTheActiveListHoweverItEnds) {
    RecordedHost host("B5B");
    const TestFrame input(5, 3);
    TestFrame output(5, 3);
    const auto render = [&] {
        t_memory.attempts = 0;
        return ZecRender(host.core, host.effects, &input.image, &output.image, 0, 9, 8, 5, 3, 0);
    };
    EXPECT_EQ(host.gl.calls(), ""); // neither core nor effect touch GL or EGL
    ASSERT_TRUE(render());
    EXPECT_EQ(host.core->staging->pitches[0], 12);
    EXPECT_EQ(t_memory.alignment, 64u);
    EXPECT_EQ(t_memory.size, 36u);
    ASSERT_TRUE(render()); // finds its own context and keeps the record for the frames to come
    host.gl.clear();
    EXPECT_TRUE(render());
    EXPECT_EQ(t_memory.attempts, 1);
    EXPECT_EQ(host.gl.calls({"glGenTextures", "glTexImage2D", "glCreateProgram", "glGetUniformLocation",
                             "glBindFramebuffer", "glUniform3fv", "glUniform4fv", "glUniform1fv"}),
              "");
    host.gl.makeHostContextCurrent();
    for (int nth : {1, 2, 3})
        host.gl.refuse("eglMakeCurrent", nth);
    EXPECT_FALSE(ZecDestroyRenderCore(host.core));
    for (int frame : {1, 2}) {
        EXPECT_FALSE(render()) << frame;
        EXPECT_EQ(t_memory.attempts, 1) << frame;
    }
}

TEST_F(Pipeline, ANewSizeOrFormatRebuildsTheFrameTexturesAndOnlyThose) {
    gl.labelTextures({});
    gl.refuse("glGenFramebuffers", 1);
    ASSERT_TRUE(render());
    const struct { // the planes keep their size where the format alone is new
        int width, height, format, newTextures, newFramebuffers;
        std::string first, last;
    } frames[] = {{5, 3, 0, 0, 0, "", ""},
                  {5, 3, 1, 3, 1, "yuvToRgb(5x3, 3x2) -> 5x3", "rgbToYuv(5x3) -> 3x3"},
                  {6, 3, 1, 7, 0, "yuvToRgb(6x3, 3x2) -> 6x3", "rgbToYuv(6x3) -> 3x3"},
                  {6, 4, 1, 7, 0, "yuvToRgb(6x4, 3x2) -> 6x4", "rgbToYuv(6x4) -> 3x4"}};
    for (const auto& f : frames) {
        gl.clear();
        ASSERT_TRUE(render(f.width, f.height, f.format));
        for (const char* function : {"glGenTextures", "glDeleteTextures"})
            EXPECT_EQ(std::ranges::count(gl.calls({function}), '\n'), f.newTextures) << f.width << f.height;
        EXPECT_EQ(std::ranges::count(gl.calls({"glGenFramebuffers"}), '\n'), f.newFramebuffers);
        EXPECT_EQ(gl.draws.empty() ? "" : gl.draws.front(), f.first);
        EXPECT_EQ(gl.draws.empty() ? "" : gl.draws.back(), f.last);
    }
    EXPECT_EQ(log.texts()[0], "Failed to create fbo!");
}

TEST(EffectChain, TheLastPlaceIsCountedAmongAllEntriesActiveOrNot) {
    const std::pair<const char*, const char*> cases[] = {
        {"BB", "input>scratch scratch>output "},
        {"BBBB", "input>scratch scratch>input input>scratch scratch>output "},
        {"-B", "input>scratch "},
        {"B0B", "input>scratch scratch>input "},
        {"5BBB", "input>scratch scratch>input input>scratch "},
    };
    for (const auto& [entries, expected] : cases) {
        RecordedHost host(entries);
        ASSERT_TRUE(host.render());
        std::string steps;
        for (const std::string& draw : host.gl.draws)
            if (draw.starts_with("mix(")) // its blur drew from the same source just before
                steps += draw.substr(4, draw.find(',') - 4) + '>' + draw.substr(draw.find("> ") + 2) + ' ';
        EXPECT_EQ(steps, expected) << entries;
        // Whatever the last complete frame has left there.
        EXPECT_EQ(host.gl.draws.back(), "rgbToYuv(output) -> packed");
    }
}

TEST(EffectChain, WithoutAnActiveEffectThePlanesAreCopiedAndGlIsNotTouched) {
    RecordedHost host("-05L");
    const TestFrame frame(5, 3), untouched(5, 3);
    fillPicture(frame.image, 5, 3, [](int plane, int x, int y) { return plane * 100 + y * 10 + x; });
    for (int format : {1, 2, -1}) {
        TestFrame target(5, 3);
        const auto render = [&](const ZecImage* input, ZecImage* output) {
            return ZecRender(host.core, host.effects, input, output, format, 0, 0, 5, 3, 0);
        };
        host.log.clear();
        EXPECT_TRUE(render(nullptr, &target.image));
        EXPECT_TRUE(render(&frame.image, nullptr));
        EXPECT_THAT(host.log.texts(), IsEmpty());
        EXPECT_TRUE(render(&frame.image, &target.image));
        EXPECT_TRUE(target == (format == 1 ? frame : untouched));
        const std::string row = "ZecGetLineInfoForImagePlane(): Invalid pixel format!";
        const std::string rows = "ZecGetActualHeightForImagePlane(): Invalid pixel format!";
        EXPECT_EQ(host.log.texts(), format == 1 ? Strings{} : (Strings{row, rows, row, rows}));
    }
    EXPECT_EQ(host.gl.calls(), "");
}

TEST(EffectChain, ALutEffectIsDrawnFromAThousandthOnAndFailsNoFrame) {
    RecordedHost host("L");
    for (float intensity : {0.0009f, 0.001f}) {
        EXPECT_EQ(host.gl.calls(), "");
        ASSERT_TRUE(ZecSetLutParams(host.effects[0], "/no such f\u00efle", intensity));
        EXPECT_TRUE(host.render());
    }
    EXPECT_THAT(host.log.texts(),
                ElementsAre("Lut path is already setted.", "Failed to open lut file /no such f\u00efle",
                            "failed to read lut file"));
    EXPECT_THAT(host.gl.draws, ElementsAre("yuvToRgb(luma, chroma) -> input", "rgbToYuv(output) -> packed"));
}

TEST_F(Pipeline, HandsBackTheFrameBufferThatWasBoundAndThenTheContext) {
    ASSERT_TRUE(render());
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    ASSERT_TRUE(render());
    EXPECT_EQ(gl.bound.framebuffer, core->framebuffer);
    GLuint other = 0;
    glGenFramebuffers(1, &other);
    gl.objects[other].label = "other";
    // The own context on a surface of somebody else's counts as another one.
    for (const std::string context : {"", "hostContext", "coreContext"}) {
        if (!context.empty())
            gl.makeHostContextCurrent();
        if (context == "coreContext")
            eglMakeCurrent(core->context->display, gl.drawSurface, gl.drawSurface, core->context->context);
        glBindFramebuffer(GL_FRAMEBUFFER, other);
        gl.clear();
        ASSERT_TRUE(render());
        const std::string enter = "eglMakeCurrent(display, coreSurface, coreSurface, coreContext);";
        const std::string frameBuffers =
            "glBindFramebuffer(GL_FRAMEBUFFER, framebuffer); glBindFramebuffer(GL_FRAMEBUFFER, other);";
        const std::string handBack = "eglMakeCurrent(display, hostDraw, hostDraw, " + context +
                                     "); eglDestroyContext(display, " + context +
                                     "); eglDestroySurface(display, hostDraw)";
        EXPECT_EQ(gl.calls({"eglMakeCurrent", "eglDestroyContext", "eglDestroySurface", "glBindFramebuffer"}),
                  recipe(context.empty() ? frameBuffers : enter + frameBuffers + handBack));
    }
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(Pipeline, FailsEveryFrameOnceTheContextCouldNotBeMade) {
    gl.refuse("eglChooseConfig", 1, EGL_BAD_ALLOC);
    EXPECT_FALSE(render());
    EXPECT_FALSE(render()); // without a message
    EXPECT_THAT(log.texts(),
                ElementsAre("eglChooseConfig() failed, errno=0x3003", "init opengl context failed"));
}

TEST_F(Pipeline, RefusesSizesAboveTheCapabilityAndLeavesItsContextCurrent) {
    gl.maxTextureSize = 4;
    gl.makeHostContextCurrent();
    EXPECT_TRUE(render(4, 4));
    gl.clear();
    EXPECT_FALSE(render(5, 3));
    EXPECT_FALSE(render(3, 5));
    const std::string message = "Device has no capability to solve the buffer. The max texture size is :4";
    EXPECT_THAT(log.texts(), ElementsAre(message, message));
    EXPECT_EQ(gl.currentContext(), "coreContext coreSurface coreSurface");
    EXPECT_TRUE(render(4, 4));
    EXPECT_EQ(gl.calls({"glGenTextures", "glDeleteTextures", "eglDestroyContext"}), ""); // still there
}

} // namespace
} // namespace ze
