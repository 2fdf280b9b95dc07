// The offscreen context: how it is made, made current and released, and snapshots of others.

#include "gl/egl_context.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/log_capture.h"

#include <memory>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace ze {
namespace {

class EglContextTest : public testing::Test {
protected:
    GlRecorder egl;
    LogCapture log;
    EglContextRecord record;
};

TEST_F(EglContextTest, IsMadeOnceLeftCurrentAndReleasedOnce) {
    EXPECT_TRUE(createContext(record) && createContext(record));
    releaseContext(record);
    releaseContext(record);
    EXPECT_TRUE(record.initialized);
    EXPECT_FALSE(makeContextCurrent(record)); // there is none
    EXPECT_EQ(egl.calls(), recipe(R"(
        eglGetDisplay(EGL_DEFAULT_DISPLAY); eglInitialize(display)
        eglChooseConfig(display, EGL_RED_SIZE=8 EGL_GREEN_SIZE=8 EGL_BLUE_SIZE=8 EGL_ALPHA_SIZE=8 EGL_RENDERABLE_TYPE=4 EGL_SURFACE_TYPE=1, 1)
        eglBindAPI(EGL_OPENGL_ES_API)
        eglCreateContext(display, config, none, EGL_CONTEXT_CLIENT_VERSION=2)
        eglCreatePbufferSurface(display, config, EGL_WIDTH=1 EGL_HEIGHT=1)
        eglMakeCurrent(display, coreSurface, coreSurface, coreContext)
        eglDestroyContext(display, coreContext); eglDestroySurface(display, coreSurface))"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EglContextTest, NamesTheStepThatFailsAndIsNotTriedAgain) {
    const struct {
        const char* function; ///< empty: there is no configuration
        EGLint error;
        const char* message;
        bool isInitialized, hasContext;
    } cases[] = {
        {"eglGetDisplay", EGL_BAD_ALLOC, "eglGetDisplay() failed, errno=0x3003", false, false},
        {"eglInitialize", EGL_NOT_INITIALIZED, "eglInitialize failed: 3001", false, false},
        {"eglChooseConfig", EGL_BAD_ATTRIBUTE, "eglChooseConfig() failed, errno=0x3004", true, false},
        {"", 0, "EGL configuration is not available!", true, false},
        {"eglCreateContext", EGL_BAD_CONFIG, "eglCreateContext() failed, errno=0x3005", true, false},
        {"eglCreatePbufferSurface", EGL_BAD_MATCH, "eglCreatePbufferSurface() failed, errno=0x3009", true,
         false},
        {"eglMakeCurrent", EGL_BAD_ACCESS, "", true, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.function);
        egl.driver = {};
        egl.configCount = *c.function ? 1 : 0;
        egl.refuse(c.function, 1, c.error);
        log.clear();
        EglContextRecord failed;
        EXPECT_FALSE(createContext(failed));
        EXPECT_EQ(log.texts(), std::vector<std::string>(*c.message ? 1 : 0, c.message));
        EXPECT_EQ(egl.liveObjects(), c.hasContext ? "coreContext, coreSurface" : "");

        // A record that got as far as the display is taken for complete.
        egl.clear();
        EXPECT_TRUE(createContext(failed));
        EXPECT_EQ(egl.calls().empty(), c.isInitialized);
        EXPECT_EQ(makeContextCurrent(failed), c.hasContext || !c.isInitialized);
    }
}

TEST_F(EglContextTest, IsMadeCurrentOnlyWhereItIsNot) {
    ASSERT_TRUE(createContext(record));
    const EGLint none = EGL_NONE;
    const EGLSurface own = record.surface;
    const EGLSurface other = eglCreatePbufferSurface(record.display, record.config, &none);
    for (const auto& [draw, read] : {std::pair{own, own}, {other, own}, {own, other}}) {
        eglMakeCurrent(record.display, draw, read, record.context);
        egl.clear();
        EXPECT_TRUE(makeContextCurrent(record));
        EXPECT_EQ(egl.calls({"eglMakeCurrent"}).empty(), draw == read);
    }
    egl.makeHostContextCurrent();
    egl.refuse("eglMakeCurrent", 1, EGL_BAD_ACCESS);
    EXPECT_FALSE(makeContextCurrent(record));
    EXPECT_TRUE(makeContextCurrent(record));
    EXPECT_EQ(egl.currentContext(), "coreContext coreSurface coreSurface");
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EglContextTest, SnapshotsKeepTheDrawSurfaceForBoth) {
    EXPECT_EQ(snapshotCurrentContext(), nullptr);
    EXPECT_THAT(log.texts(), IsEmpty());
    egl.refuse("eglGetDisplay", 1, EGL_BAD_ALLOC);
    EXPECT_EQ(snapshotCurrentContext(), nullptr);
    EXPECT_THAT(log.texts(), ElementsAre("eglGetDisplay() failed, errno=0x3003"));

    egl.makeHostContextCurrent();
    const std::unique_ptr<EglContextRecord> snapshot(snapshotCurrentContext());
    ASSERT_TRUE(snapshot && !snapshot->initialized && createContext(record));
    EXPECT_TRUE(makeContextCurrent(*snapshot));
    EXPECT_EQ(egl.currentContext(), "hostContext hostDraw hostDraw");
}

} // namespace
} // namespace ze
