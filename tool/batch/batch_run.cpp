#include "tool/batch/batch_run.h"

#include "tool/batch/bounded_queue.h"
#include "tool/batch/progress.h"
#include "tool/errors.h"
#include "tool/files/output_file.h"
#include "tool/pictures/vips.h"

#include <filesystem>
#include <thread>

namespace ze::tool {
namespace {

// One picture waits between two threads; each thread has one in hand.
constexpr size_t kWaiting = 1;

struct Item {
    const BatchJob* job = nullptr;
    PhotoFrames frames;
    std::optional<Failure> failure;
};

// Does a step of `item` unless an earlier one failed, and notes how it went.
template <class Step>
void attempt(Item& item, Step step) {
    if (item.failure)
        return;
    try {
        withFileInError(item.job->input, step);
    } catch (const Failure& failure) {
        item.failure = failure;
    } catch (const std::exception& error) {
        item.failure.emplace(ExitCode::failed, item.job->input, error.what());
    }
    if (item.failure)
        item.frames = {};
}

void makeFolder(const std::filesystem::path& folder) {
    std::error_code error;
    if (!folder.empty())
        std::filesystem::create_directories(folder, error);
    if (error)
        throw Failure(ExitCode::failed, folder, "cannot be made: " + error.message());
}

void write(const Item& item, const PhotoOptions& options) {
    const std::string& output = item.job->output;
    const std::string bytes = options.encoded(output, PhotoEffect::finish(item.frames));
    makeFolder(std::filesystem::path(output).parent_path());
    OutputFile(output, bytes).commit();
}

class Batch {
public:
    Batch(const std::vector<BatchJob>& jobs, PhotoEffect& effect, const PhotoOptions& options)
        : m_jobs(jobs), m_effect(effect), m_options(options), m_progress(jobs.size()),
          m_reader([this] { readAll(); }), m_writer([this] { writeAll(); }) {}

    ~Batch() { join(); }

    void run() {
        while (std::optional<Item> item = m_read.pop()) {
            attempt(*item, [&] { m_effect.render(item->frames); });
            if (item->failure && item->failure->code() == ExitCode::noGl)
                throw *item->failure;
            m_rendered.push(std::move(*item));
        }
        join();
    }

    std::vector<Failure> failures; ///< Complete after `run`.

private:
    void readAll() {
        for (const BatchJob& job : m_jobs) {
            Item item = {&job, {}, {}};
            attempt(item, [&] { item.frames = m_effect.prepare(job.input, m_options.read(job.input)); });
            if (!m_read.push(std::move(item)))
                break;
        }
        m_read.close();
        vips_thread_shutdown();
    }

    void writeAll() {
        while (std::optional<Item> item = m_rendered.pop()) {
            attempt(*item, [&] { write(*item, m_options); });
            if (item->failure)
                failures.push_back(*item->failure);
            m_progress.advance(item->job->input);
        }
        vips_thread_shutdown();
    }

    void join() {
        m_read.close();
        m_rendered.close();
        for (std::thread* thread : {&m_reader, &m_writer})
            if (thread->joinable())
                thread->join();
    }

    const std::vector<BatchJob>& m_jobs;
    PhotoEffect& m_effect;
    const PhotoOptions& m_options;
    Progress m_progress;
    BoundedQueue<Item> m_read{kWaiting};
    BoundedQueue<Item> m_rendered{kWaiting};
    std::thread m_reader; // The threads come last: they use all of the above.
    std::thread m_writer;
};

} // namespace

void runBatch(const std::vector<BatchJob>& jobs, PhotoEffect& effect, const PhotoOptions& options) {
    std::vector<Failure> failures;
    {
        Batch batch(jobs, effect, options);
        batch.run();
        failures = std::move(batch.failures);
    }
    if (failures.empty())
        return;
    for (const Failure& failure : failures)
        printError(failure.what());
    throw Failure(failures.front().code(), std::to_string(failures.size()) + " of " +
                                               std::to_string(jobs.size()) + " pictures failed");
}

} // namespace ze::tool
