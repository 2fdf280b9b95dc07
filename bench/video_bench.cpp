// A clip of 1280 × 720 through `zebeauty render`, beside what it is made of and beside FFmpeg's own filters:
// decoding and encoding alone, rendering alone from memory, bilateral and lut3d. The argument is a clip of
// that size, of which 4 seconds are taken; without one it is the test chart with noise, moved and zoomed.

#include "bench/median.h"
#include "host/beautifier.h"
#include "host/library_log.h"
#include "tests/support/temp_directory.h"
#include "tool/render/headless.h"
#include "tool/video/frame_converter.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 720;
constexpr size_t kPixels = kWidth * kHeight;
constexpr size_t kFrameSize = kPixels * 3 / 2;
constexpr int kRounds = 5;
constexpr int kRepackings = 100;
constexpr float kSmoothing = 0.8f;

using Seconds = double;

Seconds timeOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<Seconds>(std::chrono::steady_clock::now() - start).count();
}

/// Clips and tables in a directory of their own, and the programs that make them.
class Workshop {
public:
    explicit Workshop(const std::string& clip) {
        writeCube();
        zebeauty("lut bake table.cube table.lut");
        if (clip.empty()) {
            zebeauty("chart chart.png --size 1280x720");
            ffmpeg("-loop 1 -i chart.png -vf \"zoompan=z='1+on/600':x='on':y='on/2':d=1:s=1280x720:fps=30,"
                   "noise=alls=6:allf=t\" -t 4 -pix_fmt yuv420p -c:v libx264 -crf 18 clip.mp4");
        } else {
            ffmpeg("-i '" + std::filesystem::absolute(clip).string() +
                   "' -an -t 4 -vf scale=1280:720 -pix_fmt yuv420p -c:v libx264 -crf 18 clip.mp4");
        }
        ffmpeg("-i clip.mp4 -pix_fmt nv12 -f rawvideo frames");
    }

    void zebeauty(const std::string& arguments) { run("'" ZEBEAUTY "' " + arguments); }
    void ffmpeg(const std::string& arguments) { run("ffmpeg -nostdin -v error -y " + arguments); }

    std::string operator/(const std::string& name) const { return m_directory / name; }

private:
    // Both ways read this table: 33 levels, a little warmer and with more contrast.
    void writeCube() {
        constexpr int kLevels = 33;
        std::ofstream cube(m_directory / "table.cube");
        cube << "LUT_3D_SIZE " << kLevels << '\n';
        const auto level = [](int index) { return index / (kLevels - 1.0); };
        const auto curve = [](double x) { return x * x * (3 - 2 * x); };
        for (int b = 0; b < kLevels; ++b)
            for (int g = 0; g < kLevels; ++g)
                for (int r = 0; r < kLevels; ++r)
                    cube << curve(level(r)) << ' ' << curve(level(g)) << ' ' << 0.9 * curve(level(b)) << '\n';
    }

    void run(const std::string& command) {
        if (std::system(("cd '" + m_directory.path() + "' && " + command).c_str()) != 0)
            throw std::runtime_error("failed: " + command);
    }

    const TempDirectory m_directory;
};

/// The library alone, on frames in memory.
class Renderer {
public:
    Renderer(const std::string& frames, const std::string& table) : m_frames(contentOf(frames)) {
        if (frameCount() == 0)
            throw std::runtime_error("the clip has no frames");
        m_beautifier.set({kSmoothing, 0, table});
        process(0); // and make the context
    }

    size_t frameCount() const { return m_frames.size() / kFrameSize; }

    void run() {
        for (size_t i = 0; i < frameCount(); ++i)
            process(i);
    }

private:
    void process(size_t index) {
        auto* const luma = reinterpret_cast<uint8_t*>(m_frames.data()) + index * kFrameSize;
        std::copy_n(luma, kFrameSize, m_output.data());
        zebeauty::Frame frame;
        frame.planes = {m_output.data(), m_output.data() + kPixels, kWidth, kWidth};
        frame.width = kWidth;
        frame.height = kHeight;
        frame.standard = zebeauty::ColorStandard::bt709;
        frame.range = zebeauty::ColorRange::video;
        if (const auto reason = m_beautifier.process(frame))
            throw std::runtime_error(*reason);
    }

    std::string m_frames;
    std::vector<uint8_t> m_output = std::vector<uint8_t>(kFrameSize);
    zebeauty::Beautifier m_beautifier{{}, zebeauty::takeLibraryError};
};

/// Seconds for one frame of three planes, as decoders write them, to become one of two.
Seconds repackingTime() {
    using namespace ze::tool;
    VideoFormat format;
    format.width = kWidth;
    format.height = kHeight;
    FrameConverter converter(format, {});
    std::vector<double> times;
    for (int i = 0; i < kRepackings; ++i) {
        FfmpegPtr<AVFrame> planar = makeFrame(AV_PIX_FMT_YUV420P, kWidth, kHeight);
        for (int plane = 0; plane < 3; ++plane)
            std::fill_n(planar->data[plane], planar->linesize[plane] * (plane == 0 ? kHeight : kHeight / 2),
                        static_cast<uint8_t>(i));
        times.push_back(timeOf([&] { planar = converter.convert(std::move(planar)); }));
        if (planar->format != AV_PIX_FMT_NV12 || planar->data[1][1] != static_cast<uint8_t>(i))
            throw std::runtime_error("frames are not repacked");
    }
    return median(times);
}

void measure(const std::string& clip) {
    Workshop shop(clip);
    Renderer renderer(shop / "frames", shop / "table.lut");
    const std::string effects = "--smooth 0.8 --lut table.lut";
    // A frame that is smooth takes less to encode, so that the codecs alone work on what was rendered.
    shop.zebeauty("render clip.mp4 rendered.mp4 " + effects);

    enum Way { whole, codecs, rendering, filters };
    const std::array<std::function<void()>, 4> ways = {
        [&] { shop.zebeauty("render -y clip.mp4 whole.mp4 " + effects); },
        [&] { shop.ffmpeg("-i rendered.mp4 -c:v libx264 -crf 18 codecs.mp4"); }, [&] { renderer.run(); },
        [&] {
            shop.ffmpeg("-i clip.mp4 -vf bilateral=sigmaS=8:sigmaR=0.1:planes=7,lut3d=table.cube,"
                        "format=yuv420p -c:v libx264 -crf 18 filters.mp4");
        }};
    std::array<std::vector<double>, ways.size()> times;
    std::vector<double> toSum, toLonger, toFilters;
    for (int round = 0; round < kRounds; ++round) {
        std::array<Seconds, ways.size()> now{};
        for (size_t i = 0; i < ways.size(); ++i) {
            now[i] = timeOf(ways[i]);
            times[i].push_back(now[i]);
        }
        toSum.push_back(now[whole] / (now[codecs] + now[rendering]));
        toLonger.push_back(now[whole] / std::max(now[codecs], now[rendering]));
        toFilters.push_back(now[filters] / now[whole]);
    }

    std::printf("%zu frames, medians of %d rounds\n", renderer.frameCount(), kRounds);
    constexpr const char* kNames[] = {"zebeauty render", "a: decoding and encoding alone",
                                      "b: rendering alone", "FFmpeg's bilateral, lut3d"};
    for (size_t i = 0; i < ways.size(); ++i)
        std::printf("%-32s %6.2f s\n", kNames[i], median(times[i]));
    std::printf("render to a + b                  %6.2f\nrender to the longer of the two  %6.2f\n"
                "FFmpeg's filters to render       %6.2f\n",
                median(toSum), median(toLonger), median(toFilters));
    const Seconds repacking = repackingTime();
    const Seconds frame = median(times[rendering]) / static_cast<double>(renderer.frameCount());
    std::printf("repacking a frame                %6.2f ms, %.2f %% of rendering it\n", 1e3 * repacking,
                100 * repacking / frame);
}

} // namespace

int main(int argc, char** argv) {
    ze::tool::prepareEnvironment();
    zebeauty::catchLibraryErrors(false);
    try {
        measure(argc > 1 ? argv[1] : "");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
