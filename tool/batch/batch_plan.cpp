#include "tool/batch/batch_plan.h"

#include "tool/errors.h"
#include "tool/files/file_name.h"
#include "tool/files/input_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>

namespace ze::tool {
namespace {

namespace fs = std::filesystem;

constexpr size_t kSniffedBytes = 4096;

bool isPhotoFile(const fs::path& path) {
    std::string start(kSniffedBytes, '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<size_t>(file.gcount()));
    return looksLikePhoto(start);
}

bool isHidden(const fs::path& path) {
    return path.filename().native().front() == '.';
}

class Folder {
public:
    Folder(fs::path folder, fs::path into, bool recursive) : m_into(std::move(into)), m_recursive(recursive) {
        add(folder);
    }

    std::vector<fs::path> photos;

private:
    void add(const fs::path& folder) {
        std::error_code error;
        std::vector<fs::path> names;
        for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
            names.push_back(entry->path());
        if (error)
            throw Failure(ExitCode::badInput, folder, "cannot be read: " + error.message());
        std::sort(names.begin(), names.end());
        for (const fs::path& name : names)
            if (!isHidden(name))
                addEntry(name);
    }

    void addEntry(const fs::path& path) {
        std::error_code ignored;
        const bool isLink = fs::is_symlink(path, ignored); // links to folders may lead in circles
        if (fs::is_regular_file(path, ignored) && isPhotoFile(path))
            photos.push_back(path);
        else if (m_recursive && !isLink && fs::is_directory(path, ignored) &&
                 !fs::equivalent(path, m_into, ignored))
            add(path);
    }

    fs::path m_into;
    bool m_recursive;
};

// Where the picture `name`, relative to what the user named, goes.
fs::path outputFor(const fs::path& name, const fs::path& into, const PhotoOptions& options) {
    fs::path output = into / name;
    if (!options.as.empty())
        output.replace_extension("." + options.as);
    return output;
}

std::vector<BatchJob> jobsFor(const std::string& input, const std::string& into, bool recursive,
                              const PhotoOptions& options) {
    if (input == kStandardStream)
        throw Failure(ExitCode::usage, "standard input has no name for a file in --into");
    std::error_code ignored;
    if (!fs::is_directory(input, ignored))
        return {{input, outputFor(fs::path(input).filename(), into, options)}};
    std::vector<BatchJob> jobs;
    for (const fs::path& photo : Folder(input, into, recursive).photos)
        jobs.push_back({photo, outputFor(photo.lexically_relative(input), into, options)});
    return jobs;
}

} // namespace

std::vector<BatchJob> planBatch(const std::vector<std::string>& inputs, const std::string& into,
                                bool recursive, const PhotoOptions& options) {
    std::vector<BatchJob> jobs;
    for (const std::string& input : inputs)
        for (BatchJob& job : jobsFor(input, into, recursive, options))
            jobs.push_back(std::move(job));
    if (jobs.empty())
        throw Failure(ExitCode::badInput, inputs.front(), "has no pictures in it");

    std::map<std::string, std::string> inputOf;
    for (const BatchJob& job : jobs) {
        const auto [other, isNew] = inputOf.emplace(job.output, job.input);
        if (!isNew)
            throw Failure(ExitCode::usage, job.output,
                          "would be written twice, from " + other->second + " and from " + job.input);
        options.checkedFormat(job.output);
    }
    return jobs;
}

} // namespace ze::tool
