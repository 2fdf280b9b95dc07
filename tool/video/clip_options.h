// The options of commands that render clips.

#pragma once

#include "tool/pictures/photo_options.h"
#include "tool/video/clip_job.h"

#include <CLI/CLI.hpp>

namespace ze::tool {

struct ClipOptions {
    /// Adds the options that are for clips alone to `command`, as a group of their own. This object has to
    /// live until the command line has been parsed.
    void addTo(CLI::App& command);

    /// Whether `input` is a clip, by what it holds or by the options. Throws as `holdsClip` does.
    bool isClip(const std::string& input) const;

    /// Throws `Failure` (`usage`) when one of the options was named, for inputs that are pictures.
    void checkUnused() const;

    /// What the command line says, with the options for all inputs in `common`; `compare` is empty for none.
    /// Throws `Failure` (`usage`) when it contradicts itself, names an option for pictures, or an output that
    /// cannot or must not be written.
    ClipJob job(const std::string& input, const std::string& output, const std::string& compare,
                const PhotoOptions& common) const;

private:
    const ClipContainer* containerFor(const std::string& output, const PhotoOptions& common) const;
    std::optional<RawLayout> rawLayout() const;
    ColorOverride colors() const;
    TimeRange range() const;

    const CLI::App* m_command = nullptr;
    EncoderSettings m_encoder;
    int m_crf = 0;
    std::string m_raw; // empty for files that say what they are
    std::string m_size;
    std::string m_rate = "30";
    std::string m_from = "0";
    std::string m_to;
    bool m_strict = false;
    std::string m_progress = "line";
};

} // namespace ze::tool
