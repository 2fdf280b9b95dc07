// The render core and effects behind a Beautifier.

#pragma once

#include "host/beautifier.h"

#include "api/ze_beauty_effect.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zebeauty {

/// Render and release on one thread that has no EGL context of its own. What has rendered must be released
/// before it is destroyed.
class Renderer {
public:
    explicit Renderer(Beautifier::TakeError takeError);

    /// Draws a frame that has nothing wrong, with settings that are active. The result is that of
    /// `Beautifier::process`.
    std::optional<std::string> render(const Settings& settings, const Frame& frame, const Planes& output);

    /// Destroys core and effects and leaves the thread without anything of EGL's.
    void release();

private:
    /// A LUT effect takes one path for its life, and can be destroyed only together with the context.
    struct Table {
        std::string path;
        ZecEffect* effect = nullptr;
        float intensity = 0;
    };

    /// What has drawn a frame before. Another chain may fail in effects and tables of which nothing is known,
    /// another size in the effects' textures.
    struct Run {
        std::vector<ZecEffect*> effects;
        int width = 0;
        int height = 0;
        bool operator==(const Run& other) const;
    };

    std::vector<ZecEffect*> activeEffects(const Settings& settings);
    Table* findTable(const std::string& path);
    ZecEffect* tableEffect(const Settings& settings);
    std::optional<std::string> draw(const Run& run, const Frame& frame, const Planes& output);
    std::string takeError() const;

    Beautifier::TakeError m_takeError;
    ZecRenderCore* m_core = nullptr;
    ZecEffect* m_beauty = nullptr;
    std::vector<Table> m_tables;
    PixelFormat m_format = PixelFormat::nv12; // Of all frames of the core.
    Run m_lastRun;                            // The last one that went well.
    std::string m_lastError;         // Of the frame before: the library names some reasons only once.
    std::vector<uint8_t> m_repacked; // A frame whose rows lie as GL cannot read them.
};

} // namespace zebeauty
