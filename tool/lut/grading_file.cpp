#include "tool/lut/grading_file.h"

#include "tool/errors.h"
#include "tool/files/input_file.h"
#include "tool/lut/number_check.h"

#include <OpenColorIO/OpenColorIO.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace ze::tool {
namespace {

namespace ocio = OCIO_NAMESPACE;

constexpr size_t kLongestReason = 200;

// A link to the user's file under a name of ours, as long as this object lives: OpenColorIO takes "$" and "%"
// in a name for variables and repeats the name in its messages. The link keeps the extension, by which
// OpenColorIO chooses its reader.
class Alias {
public:
    explicit Alias(const std::string& path) {
        std::string directory = (std::filesystem::temp_directory_path() / "zebeauty-XXXXXX").string();
        if (!mkdtemp(directory.data()))
            throw Failure(ExitCode::failed, directory, "cannot be made: " + systemReason());
        m_directory = directory;
        const std::string extension = std::filesystem::path(path).extension();
        const bool isPlain = std::all_of(extension.begin(), extension.end(), [](char c) {
            return c == '.' || std::isalnum(static_cast<unsigned char>(c));
        });
        m_path = m_directory / (isPlain ? "lut" + extension : "lut");
        std::error_code error;
        std::filesystem::create_symlink(std::filesystem::absolute(path), m_path, error);
        if (!error)
            return;
        remove();
        throw Failure(ExitCode::failed, m_path, "cannot be made: " + error.message());
    }
    ~Alias() { remove(); }
    Alias(const Alias&) = delete;
    Alias& operator=(const Alias&) = delete;

    std::string path() const { return m_path; }

private:
    void remove() const {
        std::error_code ignored;
        std::filesystem::remove_all(m_directory, ignored);
    }

    std::filesystem::path m_directory;
    std::filesystem::path m_path;
};

// The reason proper, on one line: without the names of the format and the alias before it.
std::string tidied(std::string reason, const std::string& alias) {
    const size_t name = reason.find(alias + ")");
    if (reason.rfind("Error parsing ", 0) == 0 && name != reason.npos)
        reason.erase(0, name + alias.size() + 1);
    std::string text;
    for (const char c : reason)
        if (std::isspace(static_cast<unsigned char>(c)) == 0)
            text += c;
        else if (!text.empty() && text.back() != ' ')
            text += ' ';
    text.erase(0, text.find_first_not_of(" ."));
    text.erase(text.find_last_not_of(" .") + 1);
    return text.substr(0, kLongestReason);
}

// The line that a reason names. A reason without one is about the whole file and counts as the furthest.
int lineIn(const std::string& reason) {
    const size_t at = reason.find("line (");
    return at == reason.npos ? INT_MAX : std::atoi(reason.c_str() + at + 6);
}

// OpenColorIO tries all its readers, and for each that the extension fits it reports "'NAME' failed with:
// REASON". Only the readers that came furthest into the file are repeated, and the same reason only once.
std::string reasonsIn(const std::string& message, const std::string& alias) {
    constexpr std::string_view kBetween = "' failed with: ";
    std::string reasons;
    std::string last;
    int furthest = 0;
    for (size_t at = message.find(kBetween); at != message.npos;) {
        const size_t name = message.rfind('\'', at - 1) + 1;
        const size_t next = message.find(kBetween, at + 1);
        const size_t start = at + kBetween.size();
        const size_t end = next == message.npos ? next : message.rfind('\'', next - 1) - start;
        const std::string reason = tidied(message.substr(start, end), alias);
        const int line = lineIn(reason);
        if (line > furthest)
            reasons.clear();
        if (reason != last && line >= furthest)
            reasons += (reasons.empty() ? "" : "; ") + message.substr(name, at - name) + ": " + reason;
        furthest = std::max(furthest, line);
        last = reason;
        at = next;
    }
    return reasons;
}

ocio::ConstCPUProcessorRcPtr processorOf(const std::string& path) {
    const Alias alias(path);
    const ocio::FileTransformRcPtr transform = ocio::FileTransform::Create();
    transform->setSrc(alias.path().c_str());
    transform->setInterpolation(ocio::INTERP_BEST); // tetrahedral in three dimensions
    try {
        return ocio::Config::CreateRaw()
            ->getProcessor(ocio::Context::Create(), transform, ocio::TRANSFORM_DIR_FORWARD)
            ->getOptimizedCPUProcessor(ocio::OPTIMIZATION_LOSSLESS);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        const std::string reasons = reasonsIn(error.what(), alias.path());
        throw Failure(ExitCode::badInput, path,
                      reasons.empty() ? "is neither a look-up table that can be read nor a picture of one"
                                      : "is no valid look-up table (" + reasons + ")");
    }
}

} // namespace

void applyGradingFile(const std::string& path, std::vector<Color>& colors) {
    const std::string bytes = readInput(path);
    if (bytes.find('\0') == bytes.npos) { // text
        const std::string reason = findBadNumber(bytes);
        if (!reason.empty())
            throw Failure(ExitCode::badInput, path, "is no valid look-up table (" + reason + ")");
    }
    ocio::SetLoggingFunction([](const char*) {});
    const ocio::ConstCPUProcessorRcPtr processor = processorOf(path);
    ocio::PackedImageDesc image(colors.data(), static_cast<long>(colors.size()), 1,
                                ocio::CHANNEL_ORDERING_RGB);
    processor->apply(image);
}

} // namespace ze::tool
