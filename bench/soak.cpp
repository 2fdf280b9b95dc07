// Many small frames through one Beautifier, and what they cost the process: memory, descriptors and threads,
// ten times on the way. Ends with 1 when any of them has grown since the first tenth.
//
//     soak [--frames N] [--size WxH] [--format nv12|nv21] [--table FILE] [--table FILE]...

#include "host/beautifier.h"
#include "host/library_log.h"
#include "tool/render/headless.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

constexpr long kFramesPerChange = 97;
constexpr long kMemoryAllowance = 512 << 10; // Bytes: what allocator and driver may still settle.

struct Options {
    long frames = 100000;
    int width = 64;
    int height = 48;
    zebeauty::PixelFormat format = zebeauty::PixelFormat::nv12;
    std::vector<std::string> tables = {};
};

Options parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; i += 2) {
        const std::string name = argv[i], value = i + 1 < argc ? argv[i + 1] : "";
        if (name == "--frames" && std::atol(value.c_str()) >= 10)
            options.frames = std::atol(value.c_str());
        else if (name == "--size" &&
                 std::sscanf(value.c_str(), "%dx%d", &options.width, &options.height) == 2)
            continue;
        else if (name == "--format" && (value == "nv12" || value == "nv21"))
            options.format = value == "nv21" ? zebeauty::PixelFormat::nv21 : zebeauty::PixelFormat::nv12;
        else if (name == "--table" && !value.empty())
            options.tables.push_back(value);
        else {
            std::fprintf(stderr, "soak: bad %s %s; soak.cpp names the options\n", name.c_str(),
                         value.c_str());
            std::exit(2);
        }
    }
    return options;
}

struct Usage {
    long memory;
    long descriptors;
    long threads;
};

long entryCount(const char* directory) {
    return static_cast<long>(std::distance(std::filesystem::directory_iterator(directory), {}));
}

Usage currentUsage() {
    long pages = 0;
    std::ifstream statm("/proc/self/statm");
    statm >> pages >> pages; // The second number is what is resident.
    return {pages * sysconf(_SC_PAGESIZE), entryCount("/proc/self/fd"), entryCount("/proc/self/task")};
}

void print(long frames, const Usage& usage) {
    std::printf("%9ld frames: %7ld KiB, %ld descriptors, %ld threads\n", frames, usage.memory >> 10,
                usage.descriptors, usage.threads);
    std::fflush(stdout);
}

/// Other strengths, among them none at all and one alone, and another table.
zebeauty::Settings settingsOf(const Options& options, long change) {
    zebeauty::Settings settings;
    settings.smoothing = static_cast<float>(change % 4) / 3;
    settings.whitening = static_cast<float>(change % 3) / 2;
    if (!options.tables.empty() && change % 5 != 0) {
        settings.table = options.tables[static_cast<size_t>(change) % options.tables.size()];
        settings.intensity = static_cast<float>(change % 7 + 1) / 7;
    }
    return settings;
}

int run(const Options& options) {
    const int chromaPitch = (options.width + 1) / 2 * 2;
    std::vector<uint8_t> luma(static_cast<size_t>(options.width) * static_cast<size_t>(options.height));
    std::vector<uint8_t> chroma(static_cast<size_t>(chromaPitch) *
                                static_cast<size_t>((options.height + 1) / 2));
    zebeauty::Frame frame;
    frame.planes = {luma.data(), chroma.data(), options.width, chromaPitch};
    frame.width = options.width;
    frame.height = options.height;
    frame.format = options.format;

    zebeauty::catchLibraryErrors(false);
    zebeauty::Beautifier beautifier({}, zebeauty::takeLibraryError);
    print(0, currentUsage());
    Usage warm{};
    Usage last{};
    for (long i = 1; i <= options.frames; ++i) {
        if (i % kFramesPerChange == 1)
            beautifier.set(settingsOf(options, i / kFramesPerChange));
        std::memset(luma.data(), 100 + static_cast<int>(i % 100), luma.size());
        std::memset(chroma.data(), 100 + static_cast<int>(i % 50), chroma.size());
        if (const auto reason = beautifier.process(frame)) {
            std::fprintf(stderr, "soak: frame %ld: %s\n", i, reason->c_str());
            return 1;
        }
        if (i % (options.frames / 10) != 0)
            continue;
        last = currentUsage();
        if (warm.memory == 0)
            warm = last;
        print(i, last);
    }

    const bool hasGrown = last.memory > warm.memory + kMemoryAllowance ||
                          last.descriptors > warm.descriptors || last.threads > warm.threads;
    if (hasGrown)
        std::fprintf(stderr, "soak: the process has grown since the first tenth\n");
    return hasGrown ? 1 : 0;
}

} // namespace

int main(int argc, char** argv) {
    ze::tool::prepareEnvironment();
    return run(parse(argc, argv));
}
