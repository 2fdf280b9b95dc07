// The options of commands that read photos and write them.

#pragma once

#include "tool/pictures/photo_reader.h"
#include "tool/pictures/photo_writer.h"

#include <CLI/CLI.hpp>

namespace ze::tool {

struct PhotoOptions {
    bool toSrgb = false;
    std::string as; ///< Names the format of outputs as an extension does, without its dot; empty for theirs.
    SaveOptions save;
    bool overwrite = false;

    /// Adds --to-srgb and --untrusted. This object has to live until the command line has been parsed.
    void addInputOptions(CLI::App& command);
    /// Adds --as, --quality, --lossless, --strip and -y.
    void addOutputOptions(CLI::App& command);

    Photo read(const std::string& path) const;

    /// Throws `Failure` (`usage`) when the file `output` has no format that can be written as the options
    /// say, and when it must not be written.
    void checkWritable(const std::string& output) const;

    std::string encoded(const std::string& output, const Photo& photo) const;

private:
    const PhotoFormat& formatOf(const std::string& output) const;
};

} // namespace ze::tool
