#include "bench/highp_shaders.h"

#include <GLES2/gl2.h>

#include <string>
#include <string_view>

namespace {

bool g_isOn = false;
int g_replacedWords = 0;

std::string inHighp(std::string source) {
    constexpr std::string_view kHighp = "highp";
    for (const std::string_view lower : {"lowp", "mediump"})
        for (size_t at = source.find(lower); at != source.npos; at = source.find(lower, at)) {
            source.replace(at, lower.size(), kHighp);
            ++g_replacedWords;
        }
    return "precision highp sampler2D;\n" + source;
}

} // namespace

HighpShaders::HighpShaders() {
    g_isOn = true;
    g_replacedWords = 0;
}

HighpShaders::~HighpShaders() {
    g_isOn = false;
}

int HighpShaders::replacedWords() const {
    return g_replacedWords;
}

// The linker turns the library's calls of glShaderSource into calls of this. Each has one string with its
// end.
extern "C" {

decltype(glShaderSource) __real_glShaderSource, __wrap_glShaderSource;

void __wrap_glShaderSource(GLuint shader, GLsizei count, const GLchar* const* strings, const GLint* lengths) {
    if (!g_isOn) {
        __real_glShaderSource(shader, count, strings, lengths);
        return;
    }
    const std::string highp = inHighp(strings[0]);
    const GLchar* const text = highp.c_str();
    __real_glShaderSource(shader, 1, &text, nullptr);
}
}
