#include "host/beautifier.h"

#include "host/frame_planes.h"
#include "host/renderer.h"
#include "host/worker_thread.h"

#include <exception>
#include <mutex>
#include <new>
#include <stdexcept>
#include <utility>

namespace zebeauty {
namespace {

// NaN compares false and becomes 0.
float clamped(float amount) {
    if (amount > 1)
        return 1;
    return amount > 0 ? amount : 0;
}

} // namespace

struct Beautifier::Parts {
    explicit Parts(TakeError takeError) : renderer(std::move(takeError)) {}
    ~Parts() { release(); }

    Settings currentSettings() {
        const std::lock_guard lock(settingsMutex);
        return settings;
    }

    void release() {
        const std::lock_guard lock(turn);
        if (thread.isStarted())
            thread.run([this] { renderer.release(); });
    }

    std::mutex settingsMutex; // Guards `settings`.
    Settings settings;
    std::mutex turn; // Held by the one call that uses the renderer.
    Renderer renderer;
    WorkerThread thread;
};

Beautifier::Beautifier(Settings settings, TakeError takeError)
    : m_parts(std::make_unique<Parts>(std::move(takeError))) {
    set(std::move(settings));
}

Beautifier::~Beautifier() = default;
Beautifier::Beautifier(Beautifier&& other) noexcept = default;
Beautifier& Beautifier::operator=(Beautifier&& other) noexcept = default;

void Beautifier::set(Settings settings) {
    settings.smoothing = clamped(settings.smoothing);
    settings.whitening = clamped(settings.whitening);
    settings.intensity = clamped(settings.intensity);
    const std::lock_guard lock(m_parts->settingsMutex);
    m_parts->settings = std::move(settings);
}

std::optional<std::string> Beautifier::process(const Frame& frame) {
    return process(frame, frame.planes);
}

std::optional<std::string> Beautifier::process(const Frame& frame, const Planes& output) {
    try {
        if (auto reason = whatIsWrong(frame, output))
            return reason;
        const std::lock_guard lock(m_parts->turn);
        const Settings settings = m_parts->currentSettings();
        if (!settings.isActive()) {
            copyFrame(frame, output);
            return std::nullopt;
        }
        std::optional<std::string> reason;
        m_parts->thread.run([&] { reason = m_parts->renderer.render(settings, frame, output); });
        return reason;
    } catch (const std::bad_alloc&) {
        return "out of memory";
    } catch (const std::length_error&) {
        return "out of memory";
    } catch (const std::exception& error) {
        return error.what();
    }
}

void Beautifier::reset() {
    m_parts->release();
}

} // namespace zebeauty
