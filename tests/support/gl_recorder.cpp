#include "tests/support/gl_recorder.h"

#include <algorithm>
#include <sstream>

namespace {

bool tellsOfErrors(const std::string& call) {
    return call == "glGetError()" || call == "eglGetError()";
}

} // namespace

void GlRecorder::makeHostContextCurrent() {
    context = &eglObjects.emplace_back(EglObject{"hostContext"});
    drawSurface = &eglObjects.emplace_back(EglObject{"hostDraw"});
    readSurface = &eglObjects.emplace_back(EglObject{"hostRead"});
}

void GlRecorder::clear() {
    failures.clear();
    lines.clear();
    draws.clear();
}

std::string GlRecorder::calls(std::initializer_list<std::string_view> functions) const {
    std::string text;
    for (const std::string& line : lines)
        if (functions.size() == 0 || std::ranges::count(functions, line.substr(0, line.find('('))))
            text += line + '\n';
    return text;
}

std::string GlRecorder::currentContext() const {
    return context->label + ' ' + drawSurface->label + ' ' + readSurface->label;
}

std::string GlRecorder::liveObjects() const {
    std::string list;
    for (const auto& [name, object] : objects)
        list += object.kind + ' ' + object.label + ", ";
    for (const EglObject& object : eglObjects)
        list += object.isDestroyed ? "" : object.label + ", ";
    return list.substr(0, list.rfind(','));
}

std::vector<GLfloat> GlRecorder::uniform(const std::string& label, const std::string& name) const {
    for (const auto& [_, object] : objects)
        if (object.label == label && object.uniforms.contains(name))
            return object.uniforms.at(name);
    return {};
}

const GlRecorder::Object& GlRecorder::find(GLuint name) const {
    static const Object kNone;
    const auto found = objects.find(name);
    return found == objects.end() ? kNone : found->second;
}

std::string recipe(std::string_view text) {
    const std::string parameter = "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_";
    const std::string clamp = ", GL_CLAMP_TO_EDGE)";
    const std::map<std::string, std::string> kSteps = {
        {"check", "glGetError()"},
        {"unit", "glActiveTexture(GL_TEXTURE$1)"},
        {"bind", "glBindTexture(GL_TEXTURE_2D, $1)"},
        {"nearest", parameter + "MIN_FILTER, GL_NEAREST)\n" + parameter + "MAG_FILTER, GL_NEAREST)"},
        {"linear", parameter + "MIN_FILTER, GL_LINEAR)\n" + parameter + "MAG_FILTER, GL_LINEAR)"},
        {"smooth", parameter + "MAG_FILTER, GL_LINEAR)\n" + parameter + "MIN_FILTER, GL_LINEAR)"},
        {"clamp", parameter + "WRAP_S" + clamp + '\n' + parameter + "WRAP_T" + clamp},
        {"attach", "glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, $1, 0)"},
        {"clear", "glClear(GL_COLOR_BUFFER_BIT)"},
        {"point", "glVertexAttribPointer($1, 2, GL_FLOAT, GL_FALSE, $2)"},
        {"enable", "glEnableVertexAttribArray($1)"},
        {"disable", "glDisableVertexAttribArray($1)"},
        {"draw", "glDrawArrays(GL_TRIANGLE_STRIP, 0, 4)"},
    };
    std::string steps(text), lines;
    std::ranges::replace(steps, ';', '\n');
    std::istringstream stream(steps);
    for (std::string step; std::getline(stream >> std::ws, step);) {
        std::istringstream words(step);
        std::string word;
        words >> word;
        if (const auto known = kSteps.find(word); known != kSteps.end()) {
            step = known->second;
            for (const char* mark : {"$1", "$2"})
                if (words >> word)
                    step.replace(step.find(mark), 2, word);
        }
        lines += step + '\n';
    }
    return lines;
}

void RecordedCall::record(const std::string& function, const std::string& arguments) {
    const std::string& call = gl.lines.emplace_back(function + '(' + arguments + ')');
    const bool isGl = call.starts_with("gl");
    if (isGl && !gl.context)
        ADD_FAILURE() << call << ": without a current context";
    for (GlRecorder::Failure& failure : gl.failures) {
        const bool isMeant = failure.function == "*" ? !tellsOfErrors(call) : failure.function == function;
        if (!isMeant || --failure.countdown != 0)
            continue;
        gl.failed = call;
        isRefused = failure.refuses;
        if (isRefused)
            before = gl;
        (isGl ? gl.glError : gl.eglError) = failure.error;
    }
}

GLuint RecordedCall::create(const std::string& kind, const std::string& label) const {
    if (isRefused)
        return 0;
    GlRecorder::Object& object = gl.objects[++gl.lastName];
    object.kind = kind;
    object.label = label;
    return gl.lastName;
}

void RecordedCall::destroy(GLuint name) const {
    gl.objects.erase(name);
    std::ranges::replace(gl.bound.units, name, 0u);
}

bool RecordedCall::needs(bool condition) const {
    if (!condition)
        gl.glError = GL_INVALID_OPERATION;
    return condition;
}

bool RecordedCall::hasTarget() const {
    const bool isTexture = gl.target().kind == "texture";
    EXPECT_TRUE(isTexture || !gl.failed.empty()) << gl.lines.back() << ": without a target";
    return needs(isTexture && !gl.target().size.empty());
}

std::string RecordedCall::show(const EGLint* attributes) const {
    std::string text;
    for (; *attributes != EGL_NONE; attributes += 2)
        text += (text.empty() ? "" : " ") + show(Enum{attributes[0]}) + '=' + show(attributes[1]);
    return text;
}

std::string RecordedCall::show(Name name) const {
    EXPECT_TRUE(name.value == 0 || gl.objects.contains(name.value)) << "unknown or deleted name";
    return name.value ? gl.find(name.value).label : "0";
}

/// Those of programs that are not in use are shown with them.
std::string RecordedCall::show(Variable variable) const {
    if (static_cast<size_t>(variable.location) >= gl.locations.size())
        return "none";
    const auto& [program, name] = gl.locations.at(static_cast<size_t>(variable.location));
    return program == gl.bound.program ? name : gl.find(program).label + '.' + name;
}

std::string RecordedCall::show(Enum value) const {
    switch (value.value) {
#define NAME(constant)                                                                                       \
    case constant:                                                                                           \
        return #constant;
        // clang-format off
        NAME(GL_TEXTURE_2D) NAME(GL_TEXTURE0) NAME(GL_TEXTURE1) NAME(GL_UNSIGNED_BYTE) NAME(GL_FLOAT)
        NAME(GL_LUMINANCE) NAME(GL_LUMINANCE_ALPHA) NAME(GL_RGB) NAME(GL_RGBA) NAME(GL_NEAREST)
        NAME(GL_TEXTURE_MIN_FILTER) NAME(GL_TEXTURE_MAG_FILTER) NAME(GL_TEXTURE_WRAP_S)
        NAME(GL_TEXTURE_WRAP_T) NAME(GL_LINEAR) NAME(GL_CLAMP_TO_EDGE) NAME(GL_FRAMEBUFFER)
        NAME(GL_FRAMEBUFFER_BINDING) NAME(GL_COLOR_ATTACHMENT0) NAME(GL_COLOR_BUFFER_BIT)
        NAME(GL_MAX_TEXTURE_SIZE) NAME(GL_PACK_ALIGNMENT) NAME(GL_UNPACK_ALIGNMENT) NAME(GL_BLEND)
        NAME(GL_DEPTH_TEST) NAME(GL_CULL_FACE) NAME(GL_FALSE) NAME(GL_TRIANGLE_STRIP) NAME(GL_VERTEX_SHADER)
        NAME(GL_FRAGMENT_SHADER) NAME(EGL_DRAW) NAME(EGL_READ) NAME(EGL_OPENGL_ES_API) NAME(EGL_RED_SIZE)
        NAME(EGL_GREEN_SIZE) NAME(EGL_BLUE_SIZE) NAME(EGL_ALPHA_SIZE) NAME(EGL_WIDTH) NAME(EGL_HEIGHT)
        NAME(EGL_RENDERABLE_TYPE) NAME(EGL_SURFACE_TYPE) NAME(EGL_CONTEXT_CLIENT_VERSION)
        // clang-format on
    }
    return std::to_string(value.value);
}
