#include "tests/support/gl_recorder.h"

#include "tests/support/gl_recorder_call.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace {

GlRecorder* g_recorder = nullptr;
thread_local int t_depth = 0;

std::string join(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts)
        joined += (joined.empty() ? "" : ", ") + text;
    return joined;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

} // namespace

GlRecorder::GlRecorder() : m_driver(std::make_unique<GlDriver>()), m_outer(std::exchange(g_recorder, this)) {}

GlRecorder::~GlRecorder() {
    g_recorder = m_outer;
}

bool GlRecorder::isRecording() {
    return t_depth > 0;
}

void GlRecorder::raise(const std::string& function, int nth, EGLint error) {
    m_driver->failures.push_back({function, nth, error, false});
}

void GlRecorder::refuse(const std::string& function, int nth, EGLint error) {
    m_driver->failures.push_back({function, nth, error, true});
}

void GlRecorder::labelTextures(std::initializer_list<std::string> labels) {
    m_driver->labels.assign(labels);
}

void GlRecorder::makeHostContextCurrent() {
    EglCurrent& current = m_driver->current[std::this_thread::get_id()];
    current.context = &m_driver->contexts.emplace_back();
    current.context->label = "hostContext";
    current.draw = &m_driver->surfaces.emplace_back(EglSurface{"hostDraw"});
    current.read = &m_driver->surfaces.emplace_back(EglSurface{"hostRead"});
}

std::string GlRecorder::callsFrom(const std::string& first) const {
    const std::string all = calls();
    return all.substr(std::min(all.find(first), all.size()));
}

int GlRecorder::glCallCount() const {
    return m_driver->glCallCount;
}

const std::vector<GlRecorder::Draw>& GlRecorder::draws() const {
    return m_driver->draws;
}

std::string GlRecorder::calls(std::initializer_list<std::string_view> functions) const {
    std::string lines;
    for (const CallText& call : m_driver->calls)
        if (functions.size() == 0 || std::ranges::find(functions, call.function) != functions.end())
            lines += call.text + '\n';
    return lines;
}

std::vector<std::string> GlRecorder::drawTexts(std::string (Draw::*form)() const) const {
    std::vector<std::string> texts;
    for (const Draw& draw : m_driver->draws)
        texts.push_back((draw.*form)());
    return texts;
}

void GlRecorder::clear() {
    m_driver->failures.clear();
    m_driver->calls.clear();
    m_driver->draws.clear();
    m_driver->glCallCount = 0;
}

std::string GlRecorder::Draw::text() const {
    std::vector<std::string> labels;
    for (const Texture& source : sources)
        labels.push_back(source.label);
    return program + '(' + join(labels) + ") -> " + target.label;
}

std::string GlRecorder::Draw::sizes() const {
    std::vector<std::string> sourceSizes;
    for (const Texture& source : sources)
        sourceSizes.push_back(source.size());
    return program + '(' + join(sourceSizes) + ") -> " + target.size();
}

std::string GlRecorder::state() const {
    const GlContext& gl = *m_driver->current.at(std::this_thread::get_id()).context;
    const auto labelOf = [](const auto& objects, GLuint name) {
        return name ? objects.at(name).label : std::string("-");
    };
    std::string text = "active " + std::to_string(gl.activeUnit);
    for (size_t unit : {0u, 1u})
        text += ", unit " + std::to_string(unit) + ' ' + labelOf(gl.textures, gl.units[unit]);
    text += ", " + labelOf(gl.framebuffers, gl.framebuffer);
    text += " to " + labelOf(gl.textures, gl.framebuffer ? gl.framebuffers.at(gl.framebuffer).texture : 0);
    for (const GLuint location : gl.enabled)
        text += ", " + m_driver->variables[location].name + " enabled";
    if (gl.pixelStore.at(GL_PACK_ALIGNMENT) != 4 || gl.pixelStore.at(GL_UNPACK_ALIGNMENT) != 4)
        text += ", alignment changed";
    return text;
}

const GlRecorder::Texture& GlRecorder::boundTexture() const {
    const GlContext& gl = *m_driver->current.at(std::this_thread::get_id()).context;
    return gl.textures.at(gl.units[gl.activeUnit]);
}

std::string GlRecorder::currentContext() const {
    const auto found = m_driver->current.find(std::this_thread::get_id());
    if (found == m_driver->current.end() || !found->second.context)
        return "none";
    const auto& [context, draw, read] = found->second;
    return context->label + ' ' + draw->label + ' ' + read->label;
}

std::string GlRecorder::liveObjects() const {
    std::vector<std::string> objects;
    for (const GlContext& gl : m_driver->contexts) {
        if (!gl.destroyed)
            objects.push_back(gl.label);
        for (const auto& [name, texture] : gl.textures)
            objects.push_back("texture " + texture.label);
        for (const auto& [name, framebuffer] : gl.framebuffers)
            objects.push_back(framebuffer.label);
        for (const auto& [name, program] : gl.programs)
            objects.push_back("program " + program.label);
        for (const auto& [name, shader] : gl.shaders)
            objects.push_back(shader.label);
    }
    for (const EglSurface& surface : m_driver->surfaces)
        if (!surface.destroyed)
            objects.push_back(surface.label);
    return join(objects);
}

std::vector<GLfloat> GlRecorder::uniform(const std::string& program, const std::string& name) const {
    for (const GlContext& gl : m_driver->contexts)
        for (const auto& [_, candidate] : gl.programs)
            if (candidate.label == program && candidate.uniforms.contains(name))
                return candidate.uniforms.at(name);
    return {};
}

std::string recipe(std::string_view text) {
    static const struct {
        const char* step;
        const char* calls; ///< "$1" and "$2" stand for the words after the step
    } kSteps[] = {
        {"check", "glGetError()\n"},
        {"unit", "glActiveTexture(GL_TEXTURE$1)\n"},
        {"bind", "glBindTexture(GL_TEXTURE_2D, $1)\n"},
        {"nearest", "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST)\n"
                    "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST)\n"},
        {"linear", "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR)\n"
                   "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR)\n"},
        {"clamp", "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE)\n"
                  "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE)\n"},
        {"attach", "glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, $1, 0)\n"},
        {"clear", "glClear(GL_COLOR_BUFFER_BIT)\n"},
        {"point", "glVertexAttribPointer($1, 2, GL_FLOAT, GL_FALSE, $2)\n"},
        {"enable", "glEnableVertexAttribArray($1)\n"},
        {"disable", "glDisableVertexAttribArray($1)\n"},
        {"draw", "glDrawArrays(GL_TRIANGLE_STRIP, 0, 4)\n"},
    };
    std::string lines;
    std::istringstream steps(replaced(std::string(text), ";", "\n"));
    for (std::string step; std::getline(steps, step);) {
        step.erase(0, std::min(step.find_first_not_of(' '), step.size()));
        std::istringstream words(step);
        std::string first, second, third;
        words >> first >> second >> third;
        const auto* known = std::ranges::find(kSteps, first, [](const auto& entry) { return entry.step; });
        if (known != std::end(kSteps))
            lines += replaced(replaced(known->calls, "$1", second), "$2", third);
        else if (!step.empty())
            lines += step + '\n';
    }
    return lines;
}

RecordedCall::RecordedCall()
    : recorder(*g_recorder), driver(*recorder.m_driver), current(driver.current[std::this_thread::get_id()]) {
    ++t_depth;
}

RecordedCall::~RecordedCall() {
    --t_depth;
}

void RecordedCall::fail(const std::string& why) const {
    ADD_FAILURE() << m_function << ": " << why;
}

void RecordedCall::findContext() {
    if (!current.context) {
        fail("without a current context");
        current = {&driver.contexts.emplace_back(), &driver.surfaces.emplace_back(),
                   &driver.surfaces.emplace_back()};
    }
    gl = current.context;
}

void RecordedCall::record(const std::string& arguments) {
    driver.calls.push_back({m_function, m_function + '(' + arguments + ')'});
    const bool isCounted = gl && m_function != "glGetError";
    driver.glCallCount += isCounted;
    for (ScriptedFailure& failure : driver.failures) {
        const bool isMeant = failure.function.empty() ? isCounted : failure.function == m_function;
        if (!isMeant || --failure.countdown != 0)
            continue;
        isRefused = failure.refuses;
        leaveError(failure.error);
    }
}

void RecordedCall::leaveError(EGLint error) const {
    if (!gl)
        driver.eglError = error;
    else if (gl->error == GL_NO_ERROR) // the first one stays
        gl->error = GLenum(error);
}

GlRecorder::Texture& RecordedCall::boundTexture() const {
    const GLuint texture = gl->units[gl->activeUnit];
    if (texture == 0)
        fail("there is no texture");
    return gl->textures[texture];
}

GLuint RecordedCall::target() const {
    const GLuint texture = gl->framebuffer ? gl->framebuffers[gl->framebuffer].texture : 0;
    if (texture == 0)
        fail("there is no target");
    return texture;
}

void RecordedCall::setUniform(GLint location, const GLfloat* values, int count) const {
    const GlVariable& found = driver.variables[GLuint(location)];
    gl->programs[found.program].uniforms[found.name].assign(values, values + count);
}

std::string RecordedCall::variable(GLuint location, bool isUniform) const {
    const GlVariable& found = driver.variables[location];
    if (found.program != gl->program || found.isUniform != isUniform)
        fail(found.name + " is not of the current program");
    return found.name;
}

std::string RecordedCall::show(Enum value) {
    constexpr struct {
        GLenum value;
        const char* name;
    } kNames[] = {
#define NAME(constant) {constant, #constant}
        NAME(GL_TEXTURE_2D),
        NAME(GL_TEXTURE0),
        NAME(GL_TEXTURE1),
        NAME(GL_UNSIGNED_BYTE),
        NAME(GL_FLOAT),
        NAME(GL_LUMINANCE),
        NAME(GL_LUMINANCE_ALPHA),
        NAME(GL_RGB),
        NAME(GL_RGBA),
        NAME(GL_TEXTURE_MIN_FILTER),
        NAME(GL_TEXTURE_MAG_FILTER),
        NAME(GL_NEAREST),
        NAME(GL_LINEAR),
        NAME(GL_TEXTURE_WRAP_S),
        NAME(GL_TEXTURE_WRAP_T),
        NAME(GL_CLAMP_TO_EDGE),
        NAME(GL_FRAMEBUFFER),
        NAME(GL_FRAMEBUFFER_BINDING),
        NAME(GL_COLOR_ATTACHMENT0),
        NAME(GL_COLOR_BUFFER_BIT),
        NAME(GL_MAX_TEXTURE_SIZE),
        NAME(GL_PACK_ALIGNMENT),
        NAME(GL_UNPACK_ALIGNMENT),
        NAME(GL_BLEND),
        NAME(GL_DEPTH_TEST),
        NAME(GL_CULL_FACE),
        NAME(GL_FALSE),
        NAME(GL_TRIANGLE_STRIP),
        NAME(GL_VERTEX_SHADER),
        NAME(GL_FRAGMENT_SHADER),
        NAME(EGL_DRAW),
        NAME(EGL_READ),
        NAME(EGL_OPENGL_ES_API),
        NAME(EGL_RED_SIZE),
        NAME(EGL_GREEN_SIZE),
        NAME(EGL_BLUE_SIZE),
        NAME(EGL_ALPHA_SIZE),
        NAME(EGL_RENDERABLE_TYPE),
        NAME(EGL_SURFACE_TYPE),
        NAME(EGL_CONTEXT_CLIENT_VERSION),
        NAME(EGL_WIDTH),
        NAME(EGL_HEIGHT)};
#undef NAME
    const auto* found = std::ranges::find(kNames, value.value, [](const auto& entry) { return entry.value; });
    return found == std::end(kNames) ? std::to_string(value.value) : found->name;
}

std::string RecordedCall::show(EglAttributes attributes) {
    std::string text;
    for (const EGLint* entry = attributes.list; *entry != EGL_NONE; entry += 2)
        text += (entry == attributes.list ? "" : " ") + show(Enum{GLenum(entry[0])}) + '=' + show(entry[1]);
    return text;
}

std::string RecordedCall::show(EglHandle handle) const {
    for (const GlContext& context : driver.contexts)
        if (&context == handle.value)
            return context.label;
    for (const EglSurface& surface : driver.surfaces)
        if (&surface == handle.value)
            return surface.label;
    return handle.value ? "display" : "none";
}
