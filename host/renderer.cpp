#include "host/renderer.h"

#include "host/frame_planes.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <utility>

#include <EGL/egl.h>

namespace zebeauty {
namespace {

constexpr size_t kMaxTables = 8;

// As the library compares them, as doubles and once without equality.
constexpr double kActiveThreshold = 0.001;

bool isBeautyActive(const Settings& settings) {
    return settings.smoothing > kActiveThreshold || settings.whitening >= kActiveThreshold;
}

bool isTableActive(const Settings& settings) {
    return !settings.table.empty() && settings.intensity >= kActiveThreshold;
}

// The library does not free what has never met a context, or meets it no more. Such handles stay reachable.
void keepForever(const void* handle) noexcept {
    try {
        static std::mutex s_mutex;
        static auto* const s_kept = new std::vector<const void*>;
        const std::lock_guard lock(s_mutex);
        s_kept->push_back(handle);
    } catch (const std::bad_alloc&) { // It stays allocated all the same.
    }
}

// Whether the library has found that GL refused something. GL may lack then what it is told only once: a
// table, the constants of a program.
bool isGlError(const std::string& error) {
    for (const char* start : {"GL error", "gl", "Failed to create fbo"})
        if (error.rfind(start, 0) == 0)
            return true;
    return false;
}

void destroy(ZecEffect* effect) {
    if (!ZecDestoryEffect(effect))
        keepForever(effect);
}

} // namespace

bool Settings::isActive() const {
    return isBeautyActive(*this) || isTableActive(*this);
}

bool Renderer::Run::operator==(const Run& other) const {
    return effects == other.effects && width == other.width && height == other.height;
}

Renderer::Renderer(Beautifier::TakeError takeError) : m_takeError(std::move(takeError)) {}

std::string Renderer::takeError() const {
    return m_takeError ? m_takeError() : std::string();
}

std::optional<std::string> Renderer::render(const Settings& settings, const Frame& frame,
                                            const Planes& output) {
    // A core keeps the color matrix of the format before, which takes U for V in the other one.
    if (frame.format != m_format)
        release();
    m_format = frame.format;

    const Run run{activeEffects(settings), frame.width, frame.height};
    if (run == m_lastRun)
        return draw(run, frame, output);

    // A table that cannot be loaded makes no call fail: `output` gets the frame once there was no error.
    std::vector<uint8_t> buffer;
    Frame result = frame;
    result.planes = packedPlanes(frame, buffer);
    std::optional<std::string> reason = draw(run, frame, result.planes);
    if (!reason)
        copyFrame(result, output);
    return reason;
}

std::optional<std::string> Renderer::draw(const Run& run, const Frame& frame, const Planes& output) {
    Frame readable = frame;
    if (!isReadableByGl(frame)) {
        readable.planes = packedPlanes(frame, m_repacked);
        copyFrame(frame, readable.planes);
    }
    const ZecImage from = toImage(readable.planes);
    ZecImage to = toImage(output);
    if (!m_core)
        m_core = ZecCreateRenderCore();
    takeError(); // Changing the intensity of a table is logged as an error.
    const bool isDone =
        ZecRender(m_core, run.effects, &from, &to, static_cast<int>(frame.format),
                  static_cast<int>(frame.standard), static_cast<int>(frame.range), run.width, run.height, 0);
    std::string error = takeError();
    if (isDone && error.empty()) {
        m_lastRun = run;
        m_lastError.clear();
        return std::nullopt;
    }

    if (isGlError(error)) {
        release(); // The next frame makes everything anew.
        return error;
    }
    m_lastRun = {};
    for (Table& table : m_tables)
        table.intensity = 0; // Set again, with a path that there may have been no memory for.
    if (!error.empty())
        m_lastError = std::move(error);
    else if (m_lastError.empty())
        m_lastError = "the library could not render the frame; its log may say why";
    return m_lastError;
}

// Active ones alone: beside an inactive one the library hands back an earlier picture.
std::vector<ZecEffect*> Renderer::activeEffects(const Settings& settings) {
    if (isTableActive(settings) && !findTable(settings.table) && m_tables.size() == kMaxTables)
        release();
    std::vector<ZecEffect*> effects;
    if (isBeautyActive(settings)) {
        if (!m_beauty)
            m_beauty = ZecCreateEffect(0);
        ZecSetBeautyParams(m_beauty, settings.smoothing, settings.whitening);
        effects.push_back(m_beauty);
    }
    if (isTableActive(settings))
        effects.insert(settings.tableFirst ? effects.begin() : effects.end(), tableEffect(settings));
    return effects;
}

Renderer::Table* Renderer::findTable(const std::string& path) {
    const auto found = std::find_if(m_tables.begin(), m_tables.end(),
                                    [&](const Table& table) { return table.path == path; });
    return found == m_tables.end() ? nullptr : &*found;
}

ZecEffect* Renderer::tableEffect(const Settings& settings) {
    Table* table = findTable(settings.table);
    if (!table) {
        m_tables.push_back({settings.table});
        table = &m_tables.back();
        table->effect = ZecCreateEffect(1);
    }
    if (table->intensity != settings.intensity)
        ZecSetLutParams(table->effect, settings.table, settings.intensity);
    table->intensity = settings.intensity;
    return table->effect;
}

void Renderer::release() {
    // The core first: the first handle that goes marks the context for destruction, and not every EGL lets a
    // core make such a context current again. Effects need no more than a context that is current still.
    if (m_core && !ZecDestroyRenderCore(m_core))
        keepForever(m_core);
    if (m_beauty)
        destroy(m_beauty);
    for (const Table& table : m_tables)
        destroy(table.effect);
    eglReleaseThread();
    takeError();
    m_core = nullptr;
    m_beauty = nullptr;
    m_tables.clear();
    m_repacked = {};
    m_lastRun = {};
    m_lastError.clear();
}

} // namespace zebeauty
