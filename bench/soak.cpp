// A long run of small frames through one Beautifier, with all that may change changing, beside two cores on
// threads of their own and the log file. Midnight passes half way. Prints for each tenth what it costs the
// process in the mean, and ends with 1 when memory, descriptors or threads have grown since the first fifth,
// when a frame comes out otherwise than before, or when the log has not changed its file.
//
//     soak [--turns] [FRAMES]
//
// A million frames unless said otherwise, and no fewer: what drivers keep has settled after a fifth of these.
// With --turns one thread draws at a time, which Mesa 22.3 needs: its software renderer looks into the
// unlocked lists of all contexts.

#include "api/ze_beauty_effect.h"
#include "host/beautifier.h"
#include "host/library_log.h"
#include "log/log_settings.h"
#include "log/log_stream.h"
#include "tests/support/lut_file.h"
#include "tests/support/temp_directory.h"
#include "tool/render/headless.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <EGL/egl.h>
#include <malloc.h>
#include <unistd.h>

namespace {

constexpr long kFewestFrames = 1'000'000;
constexpr long kFramesPerChange = 97;
constexpr long kChangesPerFormat = 32;       // A change of format makes everything anew.
constexpr long kFramesPerCore = 5000;        // Of the two beside.
constexpr long kScenes = 256;                // All of them in the first fifth.
constexpr int kTables = 11;                  // More than stay loaded.
constexpr long kMemoryAllowance = 512 << 10; // Bytes: what allocator and driver may still settle.

std::time_t g_midnight = 0; // Of the coming night.
std::atomic<bool> g_isTomorrow{false};
std::atomic<bool> g_isDone{false};
bool g_takesTurns = false;
std::mutex g_turn;

std::unique_lock<std::mutex> takeTurn() {
    return g_takesTurns ? std::unique_lock(g_turn) : std::unique_lock<std::mutex>();
}

std::time_t comingMidnight() {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    std::tm date = {};
    localtime_r(&now.tv_sec, &date);
    date.tm_hour = date.tm_min = date.tm_sec = 0;
    ++date.tm_mday;
    date.tm_isdst = -1;
    return std::mktime(&date);
}

} // namespace

/// What the library dates its log with: one of the two seconds around midnight.
extern "C" std::time_t time(std::time_t* result) noexcept {
    const std::time_t now = g_midnight - (g_isTomorrow ? 0 : 1);
    if (result)
        *result = now;
    return now;
}

namespace {

struct Usage {
    long heap = 0;     // Bytes that are allocated and not freed.
    long resident = 0; // Bytes of memory, after the allocator has given back what it can.
    long descriptors = 0;
    long threads = 0;
};

/// The means of a tenth: which cores stand beside, and how far they are, differs from moment to moment.
class MeanUsage {
public:
    void add(const Usage& usage) {
        m_sum.heap += usage.heap;
        m_sum.resident += usage.resident;
        m_most.descriptors = std::max(m_most.descriptors, usage.descriptors);
        m_most.threads = std::max(m_most.threads, usage.threads);
        ++m_count;
    }

    Usage get() const {
        return {m_sum.heap / m_count, m_sum.resident / m_count, m_most.descriptors, m_most.threads};
    }

private:
    Usage m_sum, m_most;
    long m_count = 0;
};

long entryCount(const std::string& directory) {
    return static_cast<long>(std::distance(std::filesystem::directory_iterator(directory), {}));
}

Usage currentUsage() {
    malloc_trim(0);
    long pages = 0;
    std::ifstream statm("/proc/self/statm");
    statm >> pages >> pages; // The second number is what is resident.
    const struct mallinfo2 heap = mallinfo2();
    return {static_cast<long>(heap.uordblks + heap.hblkhd), pages * sysconf(_SC_PAGESIZE),
            entryCount("/proc/self/fd"), entryCount("/proc/self/task")};
}

void print(long frames, const Usage& usage) {
    std::printf("%9ld frames: %7ld KiB allocated, %7ld KiB resident, %ld descriptors, %ld threads\n", frames,
                usage.heap >> 10, usage.resident >> 10, usage.descriptors, usage.threads);
    std::fflush(stdout);
}

/// A frame with planes of its own.
struct OwnedFrame {
    OwnedFrame(int width, int height)
        : luma(static_cast<size_t>(width * height)),
          chroma(static_cast<size_t>((width + 1) / 2 * 2 * ((height + 1) / 2))) {
        frame.width = width;
        frame.height = height;
        frame.planes = {luma.data(), chroma.data(), width, (width + 1) / 2 * 2};
    }

    /// Skin of a lightness.
    void fill(int lightness) {
        std::memset(luma.data(), 100 + lightness, luma.size());
        std::memset(chroma.data(), 110 + lightness / 4, chroma.size());
        luma[luma.size() / 2] = 250;
    }

    size_t hash() const {
        const auto of = [](const std::vector<uint8_t>& bytes) {
            return std::hash<std::string_view>()({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        };
        return 31 * of(luma) + of(chroma);
    }

    std::vector<uint8_t> luma, chroma;
    zebeauty::Frame frame;
};

/// Sizes, colors, strengths and effects, none at all and one alone among them.
struct Scene {
    Scene(long change, const TempDirectory& directory)
        : frame(16 + static_cast<int>(change % 5) * 9, 12 + static_cast<int>(change % 3) * 7) {
        frame.frame.format = static_cast<zebeauty::PixelFormat>(change / kChangesPerFormat % 2);
        frame.frame.standard = static_cast<zebeauty::ColorStandard>(change / 2 % 2);
        settings.smoothing = static_cast<float>(change % 4) / 3;
        settings.whitening = static_cast<float>(change % 3) / 2;
        if (change % 5 != 0)
            settings.table = directory / std::to_string(change / 3 % kTables);
        settings.intensity = static_cast<float>(change % 7 + 1) / 7;
        settings.tableFirst = change % 2 == 0;
    }

    OwnedFrame frame;
    zebeauty::Settings settings;
};

void expect(bool condition, const std::string& what) {
    if (condition)
        return;
    std::fflush(stdout);
    std::fprintf(stderr, "soak: %s\n", what.c_str());
    std::_Exit(1);
}

/// Cores and effects of the thread's own, one after the other, until the soak is done.
void renderBeside(int width, long& frames) {
    OwnedFrame memory(width, 18);
    ZecImage image = {{memory.luma.data(), memory.chroma.data(), nullptr},
                      {memory.frame.planes.lumaPitch, memory.frame.planes.chromaPitch, 0}};
    size_t first = 0;
    while (!g_isDone) {
        ZecRenderCore* const core = ZecCreateRenderCore();
        ZecEffect* const effect = ZecCreateEffect(0);
        ZecSetBeautyParams(effect, 0.7f, 0.3f);
        for (long i = 0; i < kFramesPerCore && !(g_isDone && i > 0); ++i, ++frames) {
            memory.fill(30);
            auto turn = takeTurn();
            expect(ZecRender(core, {effect}, &image, &image, 0, 0, 1, width, 18, 0), "a core beside failed");
            turn = {};
            first = first ? first : memory.hash();
            expect(memory.hash() == first, "a core beside drew another frame");
            usleep(2000);
        }
        const auto turn = takeTurn();
        expect(ZecDestroyRenderCore(core) && ZecDestoryEffect(effect), "a core beside cannot be freed");
        eglReleaseThread();
    }
}

/// Returns whether the process has grown.
bool run(long frameCount, const TempDirectory& directory) {
    zebeauty::Beautifier beautifier({}, zebeauty::takeLibraryError);
    std::vector<size_t> hashes(kScenes);
    Scene scene(0, directory);
    MeanUsage tenth;
    Usage warm, last;
    for (long i = 0; i < frameCount;) {
        const long index = i / kFramesPerChange % kScenes;
        const bool isFirst = i % kFramesPerChange == 0;
        if (isFirst && index % kChangesPerFormat == 0)
            tenth.add(currentUsage());
        if (isFirst) {
            scene = Scene(index, directory);
            beautifier.set(scene.settings);
            ZeLogInfof({}, "frame %ld", i);
        }
        scene.frame.fill(static_cast<int>(i % kFramesPerChange));
        auto turn = takeTurn();
        const auto reason = beautifier.process(scene.frame.frame);
        turn = {};
        expect(!reason, "frame " + std::to_string(i) + ": " + reason.value_or(""));
        if (isFirst) {
            size_t& hash = hashes[static_cast<size_t>(index)];
            hash = hash ? hash : scene.frame.hash();
            expect(scene.frame.hash() == hash,
                   "frame " + std::to_string(i) + " came out otherwise than before");
        }
        if (++i % (frameCount / 10) != 0)
            continue;
        g_isTomorrow = i >= frameCount / 2;
        last = tenth.get();
        tenth = {};
        if (i <= frameCount / 5)
            warm = last;
        print(i, last);
    }
    return last.heap > warm.heap + kMemoryAllowance || last.resident > warm.resident + kMemoryAllowance ||
           last.descriptors > warm.descriptors || last.threads > warm.threads;
}

} // namespace

int main(int argc, char** argv) {
    g_takesTurns = argc > 1 && std::string_view(argv[1]) == "--turns";
    const int next = g_takesTurns ? 2 : 1;
    const long frameCount = argc > next ? std::atol(argv[next]) : kFewestFrames;
    if (frameCount < kFewestFrames || argc > next + 1) {
        std::fprintf(stderr, "usage: soak [--turns] [FRAMES], %ld at least\n", kFewestFrames);
        return 2;
    }
    g_midnight = comingMidnight();
    ze::tool::prepareEnvironment();
    const TempDirectory directory;
    for (int i = 0; i < kTables; ++i)
        writeFile(directory / std::to_string(i),
                  LutFile{evenLevels(static_cast<size_t>(i) + 2)}.fillWithNoise().bytes());
    zebeauty::catchLibraryErrors(false);
    ZeSetLogRootDirectory(directory.path().c_str());
    ZeSetFileLogging(true);

    long framesBeside[2] = {};
    std::thread beside[] = {std::thread([&] { renderBeside(20, framesBeside[0]); }),
                            std::thread([&] { renderBeside(33, framesBeside[1]); })};
    const bool hasGrown = run(frameCount, directory);
    g_isDone = true;
    for (std::thread& thread : beside)
        thread.join();
    std::printf("beside: %ld and %ld frames\n", framesBeside[0], framesBeside[1]);
    for (const auto& file : std::filesystem::directory_iterator(directory / "glowkit/log"))
        std::printf("%s: %ju bytes\n", file.path().filename().c_str(), file.file_size());
    expect(!hasGrown, "the process has grown since the first fifth");
    expect(entryCount(directory / "glowkit/log") == 2, "the log has not changed its file at midnight");
    return 0;
}
