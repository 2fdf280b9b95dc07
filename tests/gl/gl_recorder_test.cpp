// The double has to see what it is there for.

#include "tests/support/gl_recorder.h"

#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>

namespace {

TEST(GlRecorderTest, FailsTheTestOnMisuse) {
    const GlRecorder gl;
    GLuint framebuffer = 0, texture = 0, target = 0, program = 0;
    GLint uniform = 0, attribute = 0;
    const auto attach = [&](GLuint name) {
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, name, 0);
    };
    const auto set = [](GLenum parameter, GLint value) { glTexParameteri(GL_TEXTURE_2D, parameter, value); };
    const auto draw = [] { glDrawArrays(GL_TRIANGLE_STRIP, 0, 4); };
    const auto makeProgram = [&] {
        const GLuint shader = glCreateShader(GL_FRAGMENT_SHADER);
        const char* source = "attribute highp vec2 pos;\nuniform sampler2D sampler;\n";
        glShaderSource(shader, 1, &source, nullptr);
        program = glCreateProgram();
        glAttachShader(program, shader);
        uniform = glGetUniformLocation(program, "sampler");
        attribute = glGetAttribLocation(program, "pos");
    };
    const struct {
        std::function<void()> misuse;
        const char* failure; ///< none where the call only prepares the next ones
    } steps[] = {
        {[&] { glViewport(0, 0, 0, 0); }, "without a current context"},
        {[&] { attach(0); }, "there is no frame buffer"},
        {[&] { glGenFramebuffers(1, &framebuffer), glBindFramebuffer(GL_FRAMEBUFFER, framebuffer); },
         nullptr},
        {[&] { glClear(GL_COLOR_BUFFER_BIT); }, "there is no target"},
        {[&] { glGenTextures(1, &texture), glGenTextures(1, &target), attach(target); }, nullptr},
        {[&] { glUseProgram(texture); }, "unknown or deleted name"},
        {makeProgram, nullptr},
        {[&] { glGetUniformLocation(program, "pos"); }, "not declared"},
        {[&] { glUniform1i(uniform, 0); }, "not of the current program"},
        {[&] { glUseProgram(program), glUniform1i(uniform, 0); }, nullptr},
        {[&] { glVertexAttribPointer(GLuint(uniform), 2, GL_FLOAT, 0, 0, ""); },
         "not of the current program"},
        {[&] { glDisableVertexAttribArray(GLuint(attribute)); }, "is not enabled"},
        {[&] { glBindTexture(GL_TEXTURE_2D, texture), set(GL_TEXTURE_MIN_FILTER, GL_LINEAR); }, nullptr},
        {[&] { draw(); }, "not clamped at its edges"},
        {[&] { set(GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE), set(GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE); },
         nullptr},
        {draw, nullptr},
        {[&] { glEnableVertexAttribArray(GLuint(attribute)), draw(); }, "points nowhere"},
        {[&] { glDisableVertexAttribArray(GLuint(attribute)), glViewport(0, 0, 1, 0), draw(); },
         "the viewport"},
        {[&] { glViewport(0, 0, 0, 0), set(GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_LINEAR), draw(); },
         "no levels"},
        {[&] { set(GL_TEXTURE_MIN_FILTER, GL_LINEAR), attach(texture), draw(); }, "samples its own target"},
        {[&] { glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 5, 1, GL_RGBA, GL_UNSIGNED_BYTE, nullptr); },
         "does not fit"},
        {[&] { glDeleteTextures(1, &texture), glDeleteTextures(1, &texture); }, "unknown or deleted name"},
        {[&] { set(GL_TEXTURE_MIN_FILTER, GL_LINEAR); }, "there is no texture"},
    };
    for (const auto& [misuse, failure] : steps) {
        testing::TestPartResultArray results;
        {
            const testing::ScopedFakeTestPartResultReporter reporter(
                testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &results);
            misuse();
        }
        ASSERT_EQ(results.size(), failure ? 1 : 0) << (failure ? failure : "preparation");
        EXPECT_TRUE(!failure ||
                    std::string(results.GetTestPartResult(0).message()).find(failure) != std::string::npos)
            << failure;
    }
}

} // namespace
