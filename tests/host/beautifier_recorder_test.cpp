// The calls of the host class on the recording double; fault_test has its failures.

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
using zebeauty::Beautifier;

namespace {

class HostRecorderTest : public testing::Test {
protected:
    HostRecorderTest() { zebeauty::catchLibraryErrors(false); }

    std::optional<std::string> process(Beautifier& beautifier) {
        const auto& [planes, pitches] = m_memory.image;
        return beautifier.process({{planes[0], planes[1], pitches[0], pitches[1]}, 5, 3});
    }

    GlRecorder m_gl;
    const TestFrame m_memory{5, 3};
    const TestFrame m_untouched{5, 3};
};

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

TEST_F(HostRecorderTest, WithoutTheLogAFrameIsTakenForDoneWhoseEffectWasNotDrawn) {
    Beautifier deaf({0.5f, 0.5f});
    m_gl.refuse("glGenTextures", 7, GL_OUT_OF_MEMORY); // The effect's.
    EXPECT_EQ(process(deaf), std::nullopt);
    EXPECT_FALSE(m_memory == m_untouched);
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
        beautifier.reset();
        EXPECT_EQ(m_gl.context, nullptr);
        EXPECT_EQ(process(beautifier), std::nullopt); // With everything anew.
        m_gl.clear();
    }
    EXPECT_EQ(m_gl.liveObjects(), "program mix, program rgbToYuv, program mix, program rgbToYuv")
        << "two go with each context";
    EXPECT_EQ(m_gl.calls({"eglReleaseThread"}), "eglReleaseThread()\n");
    EXPECT_EQ(m_gl.context, nullptr);
}

} // namespace
