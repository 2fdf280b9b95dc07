// The calls of the host class, and how it meets failures, on the recording double.

#include "host/beautifier.h"
#include "host/library_log.h"
#include "tests/api/test_frame.h"
#include "tests/support/gl_recorder.h"

#include <algorithm>
#include <limits>
#include <string>

#include <gmock/gmock.h>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Optional;
using testing::StartsWith;
using zebeauty::Beautifier;

namespace {

class HostRecorderTest : public testing::Test {
protected:
    HostRecorderTest() { zebeauty::catchLibraryErrors(false); }

    std::optional<std::string> process(Beautifier& beautifier) {
        zebeauty::Frame frame;
        frame.planes = {m_memory.image.planes[0], m_memory.image.planes[1], m_memory.image.pitches[0],
                        m_memory.image.pitches[1]};
        frame.width = 5;
        frame.height = 3;
        return beautifier.process(frame);
    }

    GlRecorder m_gl;
    const TestFrame m_memory{5, 3};
    const TestFrame m_untouched{5, 3};
};

TEST_F(HostRecorderTest, AContextThatCannotBeMadeIsToldAgainAndTriedAgainAfterAReset) {
    for (const char* refused : {"eglGetDisplay", "eglInitialize", "eglCreateContext"}) {
        Beautifier beautifier({0.5f, 0.5f, "no such file"}, zebeauty::takeLibraryError);
        m_gl.clear();
        // A host without a context asks for the display twice: for its snapshot, and to make one.
        m_gl.refuse(refused, std::string_view(refused) == "eglGetDisplay" ? 2 : 1, 0x3003);
        EXPECT_THAT(process(beautifier), Optional(StartsWith(refused)));
        EXPECT_THAT(process(beautifier), Optional(StartsWith(refused)));
        EXPECT_EQ(m_gl.glCallCount(), 0);
        beautifier.reset(); // Keeps what cannot be destroyed, as the leak checker sees.
        beautifier.set({0.5f, 0.5f});
        EXPECT_EQ(process(beautifier), std::nullopt);
    }
}

TEST_F(HostRecorderTest, TablesShareAContextUpToEightAndAmountsAreClamped) {
    Beautifier beautifier({}, zebeauty::takeLibraryError);
    const auto contextCount = [&] {
        const std::string calls = m_gl.calls({"eglCreateContext"});
        return std::count(calls.begin(), calls.end(), '\n');
    };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (int i = 0; i < 16; ++i) {
        beautifier.set({nan, 2, "no such file " + std::to_string(i % 8)});
        EXPECT_NE(process(beautifier), std::nullopt);
    }
    EXPECT_EQ(contextCount(), 1);
    EXPECT_THAT(m_gl.uniform("mix", "mixFactor"), ElementsAre(0));
    EXPECT_THAT(m_gl.uniform("mix", "whitenFactor"), ElementsAre(1));
    beautifier.set({nan, 2, "a ninth"});
    EXPECT_NE(process(beautifier), std::nullopt);
    EXPECT_EQ(contextCount(), 2);
}

TEST_F(HostRecorderTest, AnErrorInTheLogIsAReasonAndKeepsTheFirstFrameOfAChain) {
    Beautifier deaf({0.5f, 0.5f});
    Beautifier beautifier({0.5f, 0.5f}, zebeauty::takeLibraryError);
    for (Beautifier* each : {&deaf, &beautifier}) {
        fillPicture(m_memory.image, 5, 3, [](int, int, int) { return 0x66; });
        m_gl.clear();
        m_gl.refuse("glGenTextures", 7, GL_OUT_OF_MEMORY); // The effect's, which then draws nothing.
        const std::optional<std::string> reason = process(*each);
        EXPECT_EQ(reason.has_value(), each == &beautifier);
        EXPECT_EQ(m_memory == m_untouched, each == &beautifier);
        EXPECT_EQ(process(*each), std::nullopt);
    }
    m_gl.raise("glDrawArrays", 1, GL_OUT_OF_MEMORY);
    EXPECT_THAT(process(beautifier), Optional(HasSubstr("GL error")));
}

TEST_F(HostRecorderTest, DrawsActiveEffectsAloneAndFreesAllThatItMade) {
    {
        m_gl.labelTextures({"input", "scratch", "output", "luma", "chroma", "packed", "intermediate"});
        Beautifier beautifier({0.5f, 0, "no such file"}, zebeauty::takeLibraryError);
        EXPECT_TRUE(process(beautifier).has_value()); // There are two effects now.
        beautifier.set({0.5f, 0, "no such file", 0});
        m_gl.clear();
        EXPECT_EQ(process(beautifier), std::nullopt);
        EXPECT_THAT(m_gl.draws, Contains("mix(input, intermediate) -> output"));
        EXPECT_EQ(m_gl.calls({"eglReleaseThread"}), "");
    }
    EXPECT_EQ(m_gl.liveObjects(), "program mix, program rgbToYuv") << "these two go with the context";
    EXPECT_EQ(m_gl.calls({"eglReleaseThread"}), "eglReleaseThread()\n");
    EXPECT_EQ(m_gl.context, nullptr);
}

} // namespace
