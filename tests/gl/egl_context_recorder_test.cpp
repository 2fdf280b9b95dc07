// The offscreen context: how it is made, made current and released, and snapshots of others.

#include "gl/egl_context.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/log_capture.h"

#include <functional>
#include <memory>
#include <thread>

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

TEST_F(EglContextTest, IsMadeOnceAndLeftCurrent) {
    EXPECT_TRUE(createContext(record));
    EXPECT_EQ(egl.calls(), recipe(R"(
        eglGetDisplay(EGL_DEFAULT_DISPLAY)
        eglInitialize(display)
        eglChooseConfig(display, EGL_RED_SIZE=8 EGL_GREEN_SIZE=8 EGL_BLUE_SIZE=8 EGL_ALPHA_SIZE=8 EGL_RENDERABLE_TYPE=4 EGL_SURFACE_TYPE=1, 1)
        eglBindAPI(EGL_OPENGL_ES_API)
        eglCreateContext(display, config, none, EGL_CONTEXT_CLIENT_VERSION=2)
        eglCreatePbufferSurface(display, config, EGL_WIDTH=1 EGL_HEIGHT=1)
        eglMakeCurrent(display, coreSurface, coreSurface, coreContext))"));
    EXPECT_EQ(egl.currentContext(), "coreContext coreSurface coreSurface");
    EXPECT_TRUE(record.initialized);

    egl.clear();
    EXPECT_TRUE(createContext(record)); // nothing to do
    EXPECT_EQ(egl.calls(), "");
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EglContextTest, NamesTheStepThatFailsAndIsNotTriedAgain) {
    const struct {
        const char* function;
        EGLint error;
        const char* message;
        bool isInitialized;
        bool hasContext;
    } cases[] = {
        {"eglGetDisplay", EGL_BAD_ALLOC, "eglGetDisplay() failed, errno=0x3003", false, false},
        {"eglInitialize", EGL_NOT_INITIALIZED, "eglInitialize failed: 3001", false, false},
        {"eglChooseConfig", EGL_BAD_ATTRIBUTE, "eglChooseConfig() failed, errno=0x3004", true, false},
        {nullptr, EGL_SUCCESS, "EGL configuration is not available!", true, false},
        {"eglCreateContext", EGL_BAD_CONFIG, "eglCreateContext() failed, errno=0x3005", true, false},
        {"eglCreatePbufferSurface", EGL_BAD_MATCH, "eglCreatePbufferSurface() failed, errno=0x3009", true,
         false},
        {"eglMakeCurrent", EGL_BAD_ACCESS, nullptr, true, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.function ? c.function : "no configuration");
        GlRecorder recorder;
        recorder.configCount = c.function ? 1 : 0;
        if (c.function)
            recorder.refuse(c.function, 1, c.error);
        log.clear();
        EglContextRecord failed;
        EXPECT_FALSE(createContext(failed));
        EXPECT_EQ(log.texts(), c.message ? std::vector<std::string>{c.message} : std::vector<std::string>{});
        EXPECT_EQ(failed.initialized, c.isInitialized);
        EXPECT_EQ(failed.context != EGL_NO_CONTEXT, c.hasContext);
        EXPECT_EQ(recorder.liveObjects(), c.hasContext ? "coreContext, coreSurface" : "");
        EXPECT_EQ(recorder.currentContext(), "none");

        // A record that got as far as the display is taken for complete.
        recorder.clear();
        EXPECT_EQ(createContext(failed), true);
        EXPECT_EQ(recorder.calls().empty(), c.isInitialized);
        EXPECT_EQ(makeContextCurrent(failed), c.hasContext || !c.isInitialized);
    }
}

TEST_F(EglContextTest, IsMadeCurrentOnlyWhereItIsNot) {
    ASSERT_TRUE(createContext(record));
    const EGLint none = EGL_NONE;
    const EGLSurface other = eglCreatePbufferSurface(record.display, record.config, &none);
    const auto bind = [&](EGLSurface draw, EGLSurface read) {
        eglMakeCurrent(record.display, draw, read, record.context);
    };
    const std::function<void()> disturb[] = {
        [&] { bind(record.surface, record.surface); }, [&] { egl.makeHostContextCurrent(); },
        [&] { bind(other, record.surface); },          [&] { bind(record.surface, other); },
        [&] { record.display = EGL_NO_DISPLAY; },
    };
    for (size_t i = 0; i < std::size(disturb); ++i) {
        SCOPED_TRACE(i);
        disturb[i]();
        egl.clear();
        EXPECT_TRUE(makeContextCurrent(record));
        EXPECT_EQ(egl.calls({"eglMakeCurrent"}).empty(), i == 0);
        EXPECT_EQ(egl.currentContext(), "coreContext coreSurface coreSurface");
    }
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EglContextTest, IsNotMadeCurrentWithoutAContextOrAgainstTheDriver) {
    EXPECT_FALSE(makeContextCurrent(record));
    EXPECT_EQ(egl.calls(), "");
    ASSERT_TRUE(createContext(record));
    egl.makeHostContextCurrent();
    egl.refuse("eglMakeCurrent", 1, EGL_BAD_ACCESS);
    EXPECT_FALSE(makeContextCurrent(record));
    EXPECT_EQ(egl.currentContext(), "hostContext hostDraw hostRead");
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EglContextTest, IsCurrentOnOneThread) {
    ASSERT_TRUE(createContext(record));
    std::thread([&] {
        EXPECT_EQ(snapshotCurrentContext(), nullptr);
        EXPECT_FALSE(makeContextCurrent(record)); // it is the other thread's
        EXPECT_EQ(egl.currentContext(), "none");
    }).join();
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EglContextTest, SnapshotsKeepTheDrawSurfaceForBoth) {
    EXPECT_EQ(snapshotCurrentContext(), nullptr);
    EXPECT_THAT(log.texts(), IsEmpty());
    egl.refuse("eglGetDisplay", 1, EGL_BAD_ALLOC);
    EXPECT_EQ(snapshotCurrentContext(), nullptr);
    EXPECT_THAT(log.texts(), ElementsAre("eglGetDisplay() failed, errno=0x3003"));

    egl.makeHostContextCurrent();
    egl.clear();
    const std::unique_ptr<EglContextRecord> snapshot(snapshotCurrentContext());
    ASSERT_NE(snapshot, nullptr);
    EXPECT_EQ(egl.calls(), recipe("eglGetDisplay(EGL_DEFAULT_DISPLAY); eglGetCurrentContext()\n"
                                  "eglGetCurrentSurface(EGL_DRAW)"));
    EXPECT_FALSE(snapshot->initialized);
    EXPECT_EQ(snapshot->config, nullptr);
    ASSERT_TRUE(createContext(record));
    EXPECT_TRUE(makeContextCurrent(*snapshot));
    EXPECT_EQ(egl.currentContext(), "hostContext hostDraw hostDraw");
}

TEST_F(EglContextTest, ReleaseDestroysWhatIsThereAndForgetsIt) {
    ASSERT_TRUE(createContext(record));
    for (const char* expected :
         {"eglDestroyContext(display, coreContext); eglDestroySurface(display, coreSurface)", ""}) {
        egl.clear();
        releaseContext(record);
        EXPECT_EQ(egl.calls(), recipe(expected));
        EXPECT_EQ(record.context, EGL_NO_CONTEXT);
        EXPECT_EQ(record.surface, EGL_NO_SURFACE);
        EXPECT_TRUE(record.initialized);
    }
    EXPECT_EQ(egl.currentContext(), "coreContext coreSurface coreSurface"); // until another one is current
}

} // namespace
} // namespace ze
