#include "tool/batch/batch_plan.h"

#include "tool/errors.h"
#include "tool/files/file_name.h"
#include "tool/files/input_file.h"
#include "tool/video/clip_sniffer.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>

namespace ze::tool {
namespace {

namespace fs = std::filesystem;

constexpr size_t kSniffedBytes = 65536;

constexpr char kClipHint[] = "each clip needs a run of its own, without --into";

// Empty for a file that cannot be read: the run will say why.
std::string startOf(const fs::path& path) {
    std::string start(kSniffedBytes, '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<size_t>(file.gcount()));
    return start;
}

bool isReadable(const fs::path& path) {
    return std::ifstream(path).is_open();
}

bool isClipFile(const fs::path& path) {
    return beginsLikeClip(startOf(path));
}

bool isPhotoFile(const fs::path& path) {
    const std::string start = startOf(path);
    return !isReadable(path) || (!photoLoaderOf(start).empty() && !beginsLikeClip(start));
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
    std::vector<fs::path> others; // Files that are no pictures.

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
        if (fs::is_regular_file(path, ignored))
            (isPhotoFile(path) ? photos : others).push_back(path);
        else if (m_recursive && !isLink && fs::is_directory(path, ignored) &&
                 !fs::equivalent(path, m_into, ignored))
            add(path);
    }

    fs::path m_into;
    bool m_recursive;
};

void tellOfOthers(const std::string& folder, const std::vector<fs::path>& others) {
    if (others.empty())
        return;
    const std::string count = std::to_string(others.size());
    printError("warning: " + folder + ": passed over " + count +
               (others.size() == 1 ? " file that is" : " files that are") + " no picture, " +
               (others.size() == 1 ? "" : "the first ") + others.front().filename().string() +
               (std::any_of(others.begin(), others.end(), isClipFile) ? std::string("; ") + kClipHint : ""));
}

// Where the picture `name`, relative to what the user named, goes.
fs::path outputFor(const fs::path& name, const fs::path& into, const PhotoOptions& options) {
    fs::path output = into / name;
    if (!options.as.empty())
        output.replace_extension("." + options.as);
    return output;
}

std::vector<BatchJob> jobsFor(const std::string& input, const BatchOptions& batch,
                              const PhotoOptions& photo) {
    if (input == kStandardStream)
        throw Failure(ExitCode::usage, "standard input has no name for a file in --into");
    std::error_code ignored;
    if (fs::is_regular_file(input, ignored) && isClipFile(input))
        throw Failure(ExitCode::usage, input, std::string("is a clip; ") + kClipHint);
    if (!fs::is_directory(input, ignored))
        return {{input, outputFor(fs::path(input).filename(), batch.into, photo)}};
    std::vector<BatchJob> jobs;
    const Folder folder(input, batch.into, batch.recursive);
    tellOfOthers(input, folder.others);
    for (const fs::path& file : folder.photos)
        jobs.push_back({file, outputFor(file.lexically_relative(input), batch.into, photo)});
    return jobs;
}

void refuseSameNames(const std::vector<BatchJob>& jobs) {
    std::map<std::string, std::string> inputOf;
    for (const BatchJob& job : jobs) {
        const auto [other, isNew] = inputOf.emplace(job.output, job.input);
        if (!isNew)
            throw Failure(ExitCode::usage, job.output,
                          "would be written twice, from " + other->second + " and from " + job.input);
    }
}

// A name that is misspelled has no extension perhaps; that it is no file is what to say.
void checkJob(const BatchJob& job, const PhotoOptions& options) {
    std::error_code ignored;
    if (fs::path(job.input).extension().empty() && !fs::exists(job.input, ignored))
        throw Failure(ExitCode::badInput, job.input, "there is no such file or folder");
    options.checkWritable(job.output);
}

} // namespace

std::vector<BatchJob> planBatch(const std::vector<std::string>& inputs, const BatchOptions& batch,
                                const PhotoOptions& photo) {
    std::vector<BatchJob> jobs;
    for (const std::string& input : inputs)
        for (BatchJob& job : jobsFor(input, batch, photo))
            jobs.push_back(std::move(job));
    if (jobs.empty())
        throw Failure(ExitCode::badInput, inputs.front(), "has no pictures in it");
    refuseSameNames(jobs);
    if (batch.skipExisting)
        std::erase_if(jobs, [](const BatchJob& job) {
            std::error_code ignored;
            return fs::exists(job.output, ignored);
        });
    for (const BatchJob& job : jobs)
        checkJob(job, photo);
    return jobs;
}

} // namespace ze::tool
