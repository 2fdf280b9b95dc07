// The offscreen context, snapshots of others, textures, frame buffers and programs: how they are made and
// released, and what their failures leave behind.

#include "gl/egl_context.h"
#include "gl/framebuffer.h"
#include "gl/program.h"
#include "gl/texture.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace ze {
namespace {

class Gl : public testing::Test {
protected:
    GlRecorder gl;
    LogCapture log;
    EglContextRecord record;
};
using EglContext = Gl;
using GlResources = Gl;

TEST_F(EglContext, IsMadeOnceLeftCurrentAndReleasedOnce) {
    EXPECT_TRUE(createContext(record));
    EXPECT_TRUE(createContext(record));
    releaseContext(record);
    releaseContext(record);
    EXPECT_TRUE(record.initialized);
    EXPECT_FALSE(makeContextCurrent(record)); // there is none
    EXPECT_EQ(gl.calls(), recipe(R"(
        eglGetDisplay(EGL_DEFAULT_DISPLAY); eglInitialize(display)
        eglChooseConfig(display, EGL_RED_SIZE=8 EGL_GREEN_SIZE=8 EGL_BLUE_SIZE=8 EGL_ALPHA_SIZE=8 EGL_RENDERABLE_TYPE=4 EGL_SURFACE_TYPE=1, 1)
        eglBindAPI(EGL_OPENGL_ES_API)
        eglCreateContext(display, config, none, EGL_CONTEXT_CLIENT_VERSION=2)
        eglCreatePbufferSurface(display, config, EGL_WIDTH=1 EGL_HEIGHT=1)
        eglMakeCurrent(display, coreSurface, coreSurface, coreContext)
        eglDestroyContext(display, coreContext); eglDestroySurface(display, coreSurface))"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(EglContextFailure, NamesTheStepAndTheRecordIsTakenForCompleteFromTheDisplayOn) {
    const struct {
        std::string function; ///< empty: there is no configuration
        EGLint error;
        std::vector<std::string> messages;
    } cases[] = {
        {"eglGetDisplay", EGL_BAD_ALLOC, {"eglGetDisplay() failed, errno=0x3003"}},
        {"eglInitialize", EGL_NOT_INITIALIZED, {"eglInitialize failed: 3001"}},
        {"eglChooseConfig", EGL_BAD_ATTRIBUTE, {"eglChooseConfig() failed, errno=0x3004"}},
        {"", 0, {"EGL configuration is not available!"}},
        {"eglCreateContext", EGL_BAD_CONFIG, {"eglCreateContext() failed, errno=0x3005"}},
        {"eglCreatePbufferSurface", EGL_BAD_MATCH, {"eglCreatePbufferSurface() failed, errno=0x3009"}},
        {"eglMakeCurrent", EGL_BAD_ACCESS, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.function);
        GlRecorder gl;
        const LogCapture log;
        gl.configCount = c.function.empty() ? 0 : 1;
        gl.refuse(c.function, 1, c.error);
        EglContextRecord failed;
        EXPECT_FALSE(createContext(failed));
        EXPECT_EQ(log.texts(), c.messages);
        const bool hasContext = c.function == "eglMakeCurrent";
        EXPECT_EQ(gl.liveObjects(), hasContext ? "coreContext, coreSurface" : "");
        EXPECT_EQ(failed.context != EGL_NO_CONTEXT, hasContext);
        gl.clear();
        EXPECT_TRUE(createContext(failed));
        EXPECT_EQ(gl.calls().empty(), c.function != "eglGetDisplay" && c.function != "eglInitialize");
    }
}

TEST_F(EglContext, IsMadeCurrentOnlyWhereItIsNot) {
    ASSERT_TRUE(createContext(record));
    const EGLint none = EGL_NONE;
    const EGLSurface own = record.surface;
    const EGLSurface other = eglCreatePbufferSurface(record.display, record.config, &none);
    for (const auto& [draw, read] : {std::pair{own, own}, {other, own}, {own, other}}) {
        eglMakeCurrent(record.display, draw, read, record.context);
        gl.clear();
        EXPECT_TRUE(makeContextCurrent(record));
        EXPECT_EQ(gl.calls({"eglMakeCurrent"}).empty(), draw == read);
    }
}

TEST_F(EglContext, SnapshotsKeepTheDrawSurfaceForBothAndNothingOfTheRecordTheyAreMadeIn) {
    EXPECT_EQ(snapshotCurrentContext(), nullptr);
    EXPECT_THAT(log.texts(), IsEmpty());
    gl.refuse("eglGetDisplay", 1, EGL_BAD_ALLOC);
    EXPECT_EQ(snapshotCurrentContext(), nullptr);
    EXPECT_THAT(log.texts(), ElementsAre("eglGetDisplay() failed, errno=0x3003"));

    gl.makeHostContextCurrent();
    auto spare = std::make_unique<EglContextRecord>();
    ASSERT_TRUE(createContext(*spare));
    gl.makeHostContextCurrent();
    const OwnedContext snapshot = snapshotCurrentContext(std::move(spare));
    EXPECT_FALSE(snapshot->initialized);
    EXPECT_TRUE(createContext(record));
    EXPECT_TRUE(makeContextCurrent(*snapshot));
    EXPECT_EQ(gl.currentContext(), "hostContext hostDraw hostDraw");
}

TEST_F(GlResources, AreMadeAndLeftBoundAndDeletedByName) {
    gl.makeHostContextCurrent();
    GLuint texture = createTexture({5, 3}, GL_LUMINANCE_ALPHA), framebuffer = createFramebuffer(), none = 0;
    deleteTexture(&none);
    deleteFramebuffer(&none);
    deleteTexture(&texture);
    deleteFramebuffer(&framebuffer);
    EXPECT_EQ(gl.calls(), recipe(R"(
        glGenTextures(1); bind texture; check
        glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE_ALPHA, 5, 3, 0, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, null)
        check; clamp
        glGenFramebuffers(1); glBindFramebuffer(GL_FRAMEBUFFER, framebuffer); check
        glDeleteTextures(1, 5x3); glDeleteFramebuffers(1, framebuffer))"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(GlResources, WithoutANameThereIsNothingToMake) {
    gl.makeHostContextCurrent();
    for (const GLint error : {GL_NO_ERROR, GL_OUT_OF_MEMORY}) {
        gl.refuse("glGenTextures", 1, error);
        EXPECT_EQ(createTexture({5, 3}, GL_RGBA), 0u);
    }
    gl.refuse("glGenFramebuffers", 1);
    EXPECT_EQ(createFramebuffer(), 0u);
    EXPECT_THAT(log.entries(),
                ElementsAre(LogCapture::Entry{6, "glowfx", "GL error: 0x1285"}, // in decimal digits
                            LogCapture::Entry{6, "glowfx", "Failed to create fbo!"}));
    EXPECT_EQ(gl.calls(), recipe("glGenTextures(1); check; glGenTextures(1); check; glGenFramebuffers(1)"));
}

TEST_F(GlResources, LeavesNothingBehindButTheProgramThatCouldBeBuilt) {
    gl.makeHostContextCurrent();
    gl.infoLog = std::string(5000, 'x');
    const struct {
        std::string function;
        int nth;
        std::string message; ///< none where the call is refused rather than in error
    } cases[] = {{"glCreateShader", 1, ""},
                 {"glCreateShader", 2, ""},
                 {"glCompileShader", 1, "Failed to compile vertex shader:\n "},
                 {"glCompileShader", 2, "Failed to compile fragment shader:\n "},
                 {"glCreateProgram", 1, ""},
                 {"glLinkProgram", 1, "Failed to link shader program:\n "},
                 {"none", 1, ""}};
    for (const auto& [function, nth, message] : cases) {
        SCOPED_TRACE(testing::Message() << function << ' ' << nth);
        const bool isError = !message.empty();
        gl.clear();
        log.clear();
        isError ? gl.raise(function, nth, GL_OUT_OF_MEMORY) : gl.refuse(function, nth);
        EXPECT_EQ(createProgram("uniform lowp float mixFactor;", "") != 0, function == "none");
        EXPECT_EQ(log.texts(), std::vector<std::string>(isError, message + std::string(4095, 'x')));
        EXPECT_EQ(gl.liveObjects(),
                  std::string(function == "none" ? "program mix, " : "") + "hostContext, hostDraw, hostRead");
    }
}

} // namespace
} // namespace ze
