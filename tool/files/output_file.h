// A file that appears whole or not at all.

#pragma once

#include "core/io/save_file.h"
#include "tool/files/interruption.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ze::tool {

/// Writes `bytes` beside `path` and moves them there with `commit()`, as the library's `CZeSaveFile` does.
/// Without a commit nothing is left behind, and signals that end the program wait for the end of this object.
/// "-" is standard output, and it, pipes and devices are written to by `commit()`; `bytes` have to live until
/// then. All failures throw `Failure` (`failed`) with the reason.
class OutputFile {
public:
    OutputFile(const std::string& path, std::string_view bytes);
    OutputFile(const std::string& path, const std::vector<uint8_t>& bytes)
        : OutputFile(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()}) {}

    void commit();

private:
    struct Replacement {
        InterruptionHold hold;
        CZeSaveFile file;
    };

    void require(bool done) const;
    void writeToStream() const;

    std::string m_path;
    std::string_view m_bytes;
    std::optional<Replacement> m_replacement; ///< None where `m_path` is no file to be replaced.
};

/// Whether `path` is standard output ("-") or something that is written to and not replaced: a pipe, a
/// device.
bool isStream(const std::string& path);

} // namespace ze::tool
