// The frame pipeline: order, laziness, reuse, the effect chain, and what failures leave behind.

#include "convert/color_constants.h"
#include "tests/api/recorded_host.h"
#include "tests/support/log_capture.h"

#include <cerrno>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

int g_allocations = 0; // of the library, not the recorder
struct {
    size_t alignment, size;
    int count;
    bool isRefused;
} g_stagingBuffer;

} // namespace

// The linker sends calls of operator new, malloc and posix_memalign here.
extern "C" {
void* __real__Znwm(size_t size);
void* __real_malloc(size_t size);
int __real_posix_memalign(void** block, size_t alignment, size_t size);

void* __wrap__Znwm(size_t size) {
    g_allocations += !GlRecorder::isRecording();
    return __real__Znwm(size);
}

void* __wrap_malloc(size_t size) {
    g_allocations += !GlRecorder::isRecording();
    return __real_malloc(size);
}

int __wrap_posix_memalign(void** block, size_t alignment, size_t size) {
    g_stagingBuffer.alignment = alignment;
    g_stagingBuffer.size = size;
    ++g_stagingBuffer.count;
    return g_stagingBuffer.isRefused ? ENOMEM : __real_posix_memalign(block, alignment, size);
}
}

namespace ze {
namespace {

using Strings = std::vector<std::string>;

class Pipeline : public testing::Test {
protected:
    Pipeline() {
        gl.labelTextures({"input", "scratch", "output", "luma", "chroma", "packed", "intermediate"});
    }

    GlRecorder gl;
    LogCapture log;
};

/// The draws of a frame with one beauty effect.
Strings drawSizes(int width, int height) {
    const auto size = [](int w, int h) { return std::to_string(w) + "x" + std::to_string(h); };
    const std::string full = size(width, height);
    return {"yuvToRgb(" + full + ", " + size((width + 1) / 2, (height + 1) / 2) + ") -> " + full,
            "blur(" + full + ") -> " + full, "mix(" + full + ", " + full + ") -> " + full,
            "rgbToYuv(" + full + ") -> " + size((width + 1) / 2, height)};
}

TEST_F(Pipeline, TheFirstFrameMakesEverythingInOrder) {
    RecordedHost host;
    EXPECT_EQ(gl.calls(), ""); // neither core nor effect touch GL or EGL
    ASSERT_TRUE(host.render(5, 3, 0, 9, 8));
    EXPECT_EQ(gl.calls({"eglCreateContext", "eglMakeCurrent", "glGetIntegerv", "glGenFramebuffers",
                        "glBindFramebuffer", "glTexImage2D", "glDrawArrays", "glReadPixels"}),
              recipe(R"(
        eglCreateContext(display, config, none, EGL_CONTEXT_CLIENT_VERSION=2)
        eglMakeCurrent(display, coreSurface, coreSurface, coreContext)
        glGetIntegerv(GL_MAX_TEXTURE_SIZE)
        glGenFramebuffers(1); glBindFramebuffer(GL_FRAMEBUFFER, framebuffer)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 5, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 5, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 5, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)
        glGetIntegerv(GL_FRAMEBUFFER_BINDING)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE, 5, 3, 0, GL_LUMINANCE, GL_UNSIGNED_BYTE, null)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE_ALPHA, 3, 2, 0, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, null)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 3, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)
        draw
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 5, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)
        draw; draw
        draw; glReadPixels(0, 0, 3, 3, GL_RGBA, GL_UNSIGNED_BYTE))"));
    EXPECT_THAT(gl.drawTexts(),
                ElementsAre("yuvToRgb(luma, chroma) -> input", "blur(input) -> intermediate",
                            "mix(input, intermediate) -> output", "rgbToYuv(output) -> packed"));
    EXPECT_EQ(gl.drawTexts(&GlRecorder::Draw::sizes), drawSizes(5, 3));
    EXPECT_EQ(gl.state(), "active 0, unit 0 packed, unit 1 intermediate, framebuffer to -");

    const ZecRenderCore& core = *host.core;
    EXPECT_THAT((std::vector{core.pixelFormat, core.colorStandard, core.colorRange, core.width, core.height,
                             core.extra}),
                ElementsAre(0, 9, 8, 5, 3, 77));
    EXPECT_EQ(g_stagingBuffer.alignment, 64u);
    EXPECT_EQ(g_stagingBuffer.size, 36u);
    EXPECT_EQ(core.staging->pitches[0], 12);
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(Pipeline, ConvertsAsToldAndWritesWhatWasReadBack) {
    for (int format : {0, 1}) {
        const GlRecorder recorder;
        RecordedHost host;
        ASSERT_TRUE(host.render(5, 3, format, 0, 1));
        const auto matrix = yuvToRgbMatrix(kBt601FullToRgb, format == 1);
        EXPECT_THAT(recorder.uniform("yuvToRgb", "matYuvToRgb"), ElementsAreArray(matrix));
        EXPECT_EQ(recorder.uniform("rgbToYuv", "coefY")[0], kRgbToBt601Full.yR);
        TestFrame expected(5, 3);
        fillPicture(expected.image, 5, 3, [&](int plane, int x, int y) {
            const bool isFirst = x % 2 == 0;
            const int place = plane == 0 ? (isFirst ? 0 : 2) : (isFirst == (format == 0) ? 1 : 3);
            return GlRecorder::readBackByte(size_t((plane == 0 ? y : 2 * y) * 12 + x / 2 * 4 + place));
        });
        EXPECT_EQ(host.output->planes[0], expected.planes[0]);
        EXPECT_EQ(host.output->planes[1], expected.planes[1]);
    }
}

TEST_F(Pipeline, ASteadyFrameMakesNothingButTheActiveListAndTheSnapshot) {
    RecordedHost host("B5B");
    const TestFrame input(5, 3);
    TestFrame output(5, 3);
    std::string calls[3];
    for (int frame = 0; frame < 3; ++frame) {
        gl.clear();
        g_stagingBuffer.count = 0;
        g_allocations = 0;
        ASSERT_TRUE(ZecRender(host.core, host.effects, &input.image, &output.image, 0, 0, 1, 5, 3, 0));
        const int allocations = g_allocations;
        calls[frame] = gl.calls();
        EXPECT_EQ(g_stagingBuffer.count, frame == 0 ? 1 : 0);
        EXPECT_TRUE(frame == 0 || allocations == 2) << allocations;
    }
    EXPECT_EQ(calls[1], calls[2]);
    EXPECT_EQ(gl.calls({"eglMakeCurrent", "eglDestroyContext", "glGenTextures", "glGenFramebuffers",
                        "glTexImage2D", "glCreateProgram", "glDeleteTextures", "glGetUniformLocation",
                        "glBindFramebuffer", "glUniform3fv", "glUniform4fv", "glUniform1fv"}),
              "");
}

TEST_F(Pipeline, ANewSizeOrFormatRebuildsTheFrameTexturesAndOnlyThose) {
    RecordedHost host;
    ASSERT_TRUE(host.render());
    const struct {
        int width, height, format, standard, range;
        int newTextures;
    } frames[] = {{5, 3, 0, 1, 1, 0}, {5, 3, 0, 1, 0, 0}, {5, 3, 1, 1, 0, 3}, // the planes keep their size
                  {6, 3, 1, 1, 0, 7}, {6, 4, 1, 1, 0, 7}, {6, 4, 1, 1, 0, 0}};
    for (const auto& f : frames) {
        SCOPED_TRACE(testing::Message()
                     << f.width << 'x' << f.height << ' ' << f.format << f.standard << f.range);
        gl.clear();
        ASSERT_TRUE(host.render(f.width, f.height, f.format, f.standard, f.range));
        const auto count = [&](const char* function) {
            return std::ranges::count(gl.calls({function}), '\n');
        };
        EXPECT_EQ(count("glGenTextures"), f.newTextures);
        EXPECT_EQ(count("glDeleteTextures"), f.newTextures);
        EXPECT_EQ(count("glGetIntegerv"), f.newTextures ? 2 : 1);
        EXPECT_EQ(count("glGenFramebuffers"), 0);
        EXPECT_EQ(gl.drawTexts(&GlRecorder::Draw::sizes), drawSizes(f.width, f.height));
    }
}

TEST_F(Pipeline, TheLastPlaceIsCountedAmongAllEntriesActiveOrNot) {
    const struct {
        const char* entries;
        Strings steps;
    } cases[] = {
        {"B", {"input>output"}},
        {"BB", {"input>scratch", "scratch>output"}},
        {"BBB", {"input>scratch", "scratch>input", "input>output"}},
        {"BBBB", {"input>scratch", "scratch>input", "input>scratch", "scratch>output"}},
        {"B-", {"input>scratch"}},
        {"-B", {"input>scratch"}},
        {"0B", {"input>scratch"}},
        {"5B", {"input>scratch"}},
        {"BB-", {"input>scratch", "scratch>input"}},
        {"B0B", {"input>scratch", "scratch>input"}},
        {"5BBB", {"input>scratch", "scratch>input", "input>scratch"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.entries);
        GlRecorder recorder;
        recorder.labelTextures({"input", "scratch", "output"});
        RecordedHost host(c.entries);
        ASSERT_TRUE(host.render());
        Strings steps;
        for (const GlRecorder::Draw& draw : recorder.draws())
            if (draw.program == "mix") // its blur drew from the same source just before
                steps.push_back(draw.sources[0].label + '>' + draw.target.label);
        EXPECT_EQ(steps, c.steps);
        EXPECT_EQ(recorder.draws().back().sources[0].label, "output"); // whatever it holds
    }
}

TEST_F(Pipeline, WithoutAnActiveEffectThePlanesAreCopiedAndGlIsNotTouched) {
    RecordedHost host("-05");
    EXPECT_TRUE(host.render());
    EXPECT_EQ(host.output->planes[0], TestFrame(5, 3).planes[0]);
    EXPECT_EQ(host.output->planes[1], TestFrame(5, 3).planes[1]);
    TestFrame frame(5, 3), target(5, 3);
    fillPicture(frame.image, 5, 3, [](int plane, int x, int y) { return plane * 100 + y * 10 + x; });
    EXPECT_TRUE(ZecRender(host.core, host.effects, &frame.image, &target.image, 1, 0, 0, 5, 3, 0));
    EXPECT_EQ(target.planes[0], frame.planes[0]);
    EXPECT_EQ(target.planes[1], frame.planes[1]);
    EXPECT_TRUE(ZecRender(host.core, host.effects, nullptr, &target.image, 9, 0, 0, 5, 3, 0));
    EXPECT_TRUE(ZecRender(host.core, host.effects, &frame.image, nullptr, 9, 0, 0, 5, 3, 0));
    EXPECT_THAT(log.texts(), IsEmpty());

    const std::string size = "ZecGetLineInfoForImagePlane(): Invalid pixel format!";
    const std::string rows = "ZecGetActualHeightForImagePlane(): Invalid pixel format!";
    for (int format : {2, -1}) {
        log.clear();
        TestFrame untouched(5, 3);
        EXPECT_TRUE(
            ZecRender(host.core, host.effects, &frame.image, &untouched.image, format, 0, 0, 5, 3, 0));
        EXPECT_THAT(log.texts(), ElementsAre(size, rows, size, rows));
        EXPECT_EQ(untouched.planes[0], TestFrame(5, 3).planes[0]);
        EXPECT_EQ(untouched.planes[1], TestFrame(5, 3).planes[1]);
    }
    EXPECT_EQ(host.core->width, 0);
    EXPECT_EQ(gl.calls(), "");
}

TEST_F(Pipeline, ALutEffectIsDrawnFromAThousandthOnAndItsFailureFailsNoFrame) {
    RecordedHost host("L");
    ASSERT_TRUE(ZecSetLutParams(host.effects[0], "", 0.0009f));
    EXPECT_TRUE(host.render());
    EXPECT_EQ(gl.calls(), "");
    EXPECT_THAT(log.texts(), IsEmpty());
    ASSERT_TRUE(ZecSetLutParams(host.effects[0], "/no such f\u00efle", 0.001f));
    EXPECT_TRUE(host.render());
    EXPECT_THAT(log.texts(),
                ElementsAre("Failed to open lut file /no such f\u00efle", "failed to read lut file"));
    EXPECT_THAT(gl.drawTexts(), ElementsAre("yuvToRgb(luma, chroma) -> input", "rgbToYuv(output) -> packed"));
}

TEST_F(Pipeline, RefusesOtherFormatsBeforeItTouchesGl) {
    RecordedHost host;
    for (int format : {2, -1, 17}) {
        log.clear();
        EXPECT_FALSE(host.render(5, 3, format));
        EXPECT_THAT(log.texts(), ElementsAre("We only support NV12 and NV21 pixel formats right now!"));
    }
    EXPECT_EQ(gl.calls(), "");
}

const std::initializer_list<std::string_view> kContextChanges = {"eglMakeCurrent", "eglDestroyContext",
                                                                 "eglDestroySurface"};

TEST_F(Pipeline, HandsTheThreadBackToTheContextThatWasCurrent) {
    RecordedHost host;
    ASSERT_TRUE(host.render());
    const char kHandedBack[] = R"(
        eglMakeCurrent(display, coreSurface, coreSurface, coreContext)
        eglMakeCurrent(display, hostDraw, hostDraw, hostContext)
        eglDestroyContext(display, hostContext); eglDestroySurface(display, hostDraw))";
    EXPECT_EQ(gl.currentContext(), "coreContext coreSurface coreSurface"); // there was none before

    gl.clear();
    ASSERT_TRUE(host.render()); // its own stays
    EXPECT_EQ(gl.calls(kContextChanges), "");

    gl.makeHostContextCurrent();
    ASSERT_TRUE(host.render());
    EXPECT_EQ(gl.calls(kContextChanges), recipe(kHandedBack));
    EXPECT_EQ(gl.currentContext(), "hostContext hostDraw hostDraw");
    EXPECT_EQ(gl.liveObjects().find("hostContext"), std::string::npos); // for as long as it stays current

    gl.clear();
    ASSERT_TRUE(host.render());
    EXPECT_EQ(gl.calls(kContextChanges), recipe(kHandedBack)); // EGL refuses these
    EXPECT_EQ(gl.currentContext(), "coreContext coreSurface coreSurface");

    // The own context on a surface of somebody else's counts as another one.
    gl.makeHostContextCurrent();
    const EGLSurface other = eglGetCurrentSurface(EGL_READ);
    eglMakeCurrent(host.core->context->display, other, other, host.core->context->context);
    gl.clear();
    ASSERT_TRUE(host.render());
    EXPECT_EQ(gl.calls(kContextChanges), recipe(R"(
        eglMakeCurrent(display, coreSurface, coreSurface, coreContext)
        eglMakeCurrent(display, hostRead, hostRead, coreContext)
        eglDestroyContext(display, coreContext); eglDestroySurface(display, hostRead))"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(Pipeline, BindsItsFrameBufferWhereAnotherIsBoundAndThatOneAgain) {
    RecordedHost host;
    ASSERT_TRUE(host.render());
    GLuint other = 0;
    glGenFramebuffers(1, &other);
    for (GLuint before : {other, 0u}) {
        glBindFramebuffer(GL_FRAMEBUFFER, before);
        gl.clear();
        ASSERT_TRUE(host.render());
        EXPECT_EQ(std::ranges::count(gl.calls({"glBindFramebuffer"}), '\n'), before ? 2 : 1);
        GLint after = 0;
        glGetIntegerv(GL_FRAMEBUFFER_BINDING, &after);
        EXPECT_EQ(GLuint(after), before ? before : host.core->framebuffer);
    }
}

TEST_F(Pipeline, FailsEveryFrameOnceTheContextCouldNotBeMade) {
    for (const char* step : {"eglGetDisplay", "eglChooseConfig", "eglCreatePbufferSurface"}) {
        SCOPED_TRACE(step);
        log.clear();
        GlRecorder recorder;
        RecordedHost host;
        recorder.refuse(step, std::string(step) == "eglGetDisplay" ? 2 : 1,
                        EGL_BAD_ALLOC); // the snapshot's first
        EXPECT_FALSE(host.render());
        EXPECT_THAT(log.texts(),
                    ElementsAre(std::string(step) + "() failed, errno=0x3003", "init opengl context failed"));
        log.clear();
        EXPECT_FALSE(host.render());
        EXPECT_THAT(log.texts(), IsEmpty());
        EXPECT_EQ(recorder.glCallCount(), 0);
    }
}

TEST_F(Pipeline, FailsAFrameWhoseContextCannotBeMadeCurrent) {
    RecordedHost host;
    ASSERT_TRUE(host.render());
    gl.makeHostContextCurrent();
    gl.clear();
    gl.refuse("eglMakeCurrent", 1, EGL_BAD_ACCESS);
    EXPECT_FALSE(host.render());
    EXPECT_EQ(gl.glCallCount(), 0);
    EXPECT_EQ(gl.currentContext(), "hostContext hostDraw hostRead");
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(Pipeline, RefusesSizesAboveTheCapabilityAndLeavesItsContextCurrent) {
    gl.maxTextureSize = 4;
    gl.makeHostContextCurrent();
    RecordedHost host;
    for (const auto& [width, height] : {std::pair{5, 3}, {3, 5}}) {
        log.clear();
        EXPECT_FALSE(host.render(width, height));
        EXPECT_THAT(log.texts(),
                    ElementsAre("Device has no capability to solve the buffer. The max texture size is :4"));
        EXPECT_EQ(gl.currentContext(), "coreContext coreSurface coreSurface");
    }
    EXPECT_EQ(gl.calls({"glGenTextures", "eglDestroyContext"}), "");
    log.clear();
    EXPECT_TRUE(host.render(4, 4));
    EXPECT_FALSE(host.render(5, 4));
    gl.clear();
    EXPECT_TRUE(host.render(4, 4));
    EXPECT_EQ(gl.calls({"glGenTextures", "glDeleteTextures"}), ""); // still there
}

TEST_F(Pipeline, AFailedRebuildIsMadeUpForWhateverSizeComesNext) {
    // Textures in the order of their creation; 0 is the staging buffer, 7 the effect's, which gets a second
    // try.
    for (int missing = 0; missing <= 7; ++missing)
        for (bool isFirstFrame : {true, false})
            for (const auto& [width, height] : {std::pair{5, 3}, {8, 4}, {2, 2}}) {
                SCOPED_TRACE(testing::Message() << "missing " << missing << (isFirstFrame ? " at first" : "")
                                                << ", then " << width << 'x' << height);
                GlRecorder recorder;
                RecordedHost host;
                EXPECT_TRUE(isFirstFrame || host.render(5, 3));
                recorder.clear();
                log.clear();
                g_stagingBuffer.isRefused = missing == 0;
                recorder.refuse("glGenTextures", missing, GL_OUT_OF_MEMORY);
                if (missing == 7)
                    recorder.refuse("glGenTextures", 8, GL_OUT_OF_MEMORY);
                EXPECT_EQ(host.render(8, 4), missing == 7); // an effect that fails does not fail the frame
                g_stagingBuffer.isRefused = false;
                const Strings messages = log.texts();
                EXPECT_EQ(messages.size(), missing == 7 && !isFirstFrame ? 2u : 1u);
                EXPECT_THAT(messages, testing::Each(missing == 0 ? "buffer is null" : "GL error: 0x1285"));
                EXPECT_EQ(recorder.draws().size(), missing < 7 ? 0u : 2u);

                recorder.clear();
                log.clear();
                EXPECT_TRUE(host.render(width, height));
                EXPECT_EQ(recorder.drawTexts(&GlRecorder::Draw::sizes), drawSizes(width, height));
                EXPECT_THAT(log.texts(), IsEmpty());
            }
}

TEST_F(Pipeline, AMissingFrameBufferIsMadeByTheNextFrame) {
    RecordedHost host;
    gl.refuse("glGenFramebuffers", 1);
    {
        testing::TestPartResultArray misuse; // without a frame buffer there is no target
        const testing::ScopedFakeTestPartResultReporter reporter(&misuse);
        EXPECT_TRUE(host.render());
        ASSERT_GT(misuse.size(), 0);
    }
    EXPECT_EQ(log.texts()[0], "Failed to create fbo!");
    gl.clear();
    EXPECT_TRUE(host.render());
    EXPECT_EQ(gl.drawTexts(&GlRecorder::Draw::sizes), drawSizes(5, 3));
}

Strings lines(const std::string& text) {
    std::istringstream stream(text);
    Strings result;
    for (std::string line; std::getline(stream, line);)
        result.push_back(line);
    return result;
}

/// What an error at GL call `nth` of a frame with these calls leads to: the next look at glGetError finds it,
/// and the call before that look decides about message and result.
std::pair<std::string, bool> outcomeOfError(const Strings& calls, int nth) {
    size_t i = 0;
    for (; nth > 0; ++i)
        nth -= calls[i].starts_with("gl") && calls[i] != "glGetError()";
    while (i < calls.size() && calls[i] != "glGetError()")
        ++i;
    const std::string before = calls[i - 1];
    const bool isInFirstProgram =
        std::find(calls.begin(), calls.begin() + ptrdiff_t(i), "glGetAttribLocation(yuvToRgb, posAttr)") ==
        calls.begin() + ptrdiff_t(i);
    if (before == "glCompileShader(vertexShader)")
        return {"Failed to compile vertex shader:\n why it failed", !isInFirstProgram};
    if (before == "glCompileShader(fragmentShader)")
        return {"Failed to compile fragment shader:\n why it failed", !isInFirstProgram};
    if (before.starts_with("glLinkProgram"))
        return {"Failed to link shader program:\n why it failed", !isInFirstProgram};
    if (before.starts_with("glReadPixels"))
        return {"glReadPixels() failed!", true};
    if (before.starts_with("glTexSubImage2D"))
        return {std::string("glTexSubImage2D() failed! errno=1282, format=") +
                    (before.find("ALPHA") == std::string::npos ? "6409, width=5, height=3"
                                                               : "6410, width=3, height=2"),
                true};
    return {"GL error: 0x1282", true};
}

TEST_F(Pipeline, AnErrorAtAnyCallIsReportedOnceAndTheFrameGoesOn) {
    for (bool isFirstFrame : {true, false}) {
        Strings calls;
        for (int nth = 0, callCount = 0; nth <= callCount; ++nth) {
            GlRecorder recorder;
            RecordedHost host;
            ASSERT_TRUE(isFirstFrame || host.render());
            recorder.clear();
            log.clear();
            recorder.raise("", nth, GL_INVALID_OPERATION);
            const bool result = host.render();
            if (nth == 0) { // nothing fails
                callCount = recorder.glCallCount();
                calls = lines(recorder.calls());
                ASSERT_GT(callCount, isFirstFrame ? 250 : 120);
                continue;
            }
            const auto& [message, isTrue] = outcomeOfError(calls, nth);
            SCOPED_TRACE(testing::Message() << "call " << nth << (isFirstFrame ? " of the first frame" : ""));
            EXPECT_EQ(result, isTrue);
            EXPECT_TRUE(host.render()); // the next one finds what nobody has looked at
            EXPECT_THAT(log.texts(), ElementsAre(message));
            recorder.clear();
            EXPECT_TRUE(host.render());
            EXPECT_EQ(recorder.drawTexts(&GlRecorder::Draw::sizes), drawSizes(5, 3));
            EXPECT_EQ(recorder.state().substr(recorder.state().find("framebuffer")), "framebuffer to -");
        }
    }
}

} // namespace
} // namespace ze
