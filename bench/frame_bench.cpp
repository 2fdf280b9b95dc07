// A whole frame with the beauty effect, step by step, with the shaders as they are and in highp. The argument
// "lut" adds two look-up tables of 33 levels that change nothing, one with uniform levels and one with
// others.

#include "api/render_core.h"
#include "bench/driver_probe.h"
#include "bench/highp_shaders.h"
#include "bench/median.h"
#include "gl/egl_context.h"
#include "tests/support/lut_file.h"
#include "tests/support/temp_directory.h"
#include "tool/chart/chart.h"
#include "tool/render/headless.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include <libyuv/convert.h>
#include <libyuv/planar_functions.h>

namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 720;
constexpr size_t kPixels = kWidth * kHeight;
constexpr float kSmooth = 0.8f;
constexpr float kWhiten = 0.2f;

constexpr int kWarmUpFrames = 2;
constexpr size_t kMaxRounds = 41;
constexpr std::chrono::seconds kMaxDuration{75};

/// An NV12 frame without padding.
struct Frame {
    std::vector<uint8_t> bytes = std::vector<uint8_t>(kPixels * 3 / 2);

    ZecImage image() { return {{bytes.data(), bytes.data() + kPixels}, {kWidth, kWidth}}; }
};

Frame chartFrame() {
    const ze::tool::Picture chart = ze::tool::drawChart(kWidth, kHeight, ze::tool::ChartNoise::speckled);
    std::vector<uint8_t> u(kPixels / 4), v(kPixels / 4);
    Frame frame;
    const ZecImage to = frame.image();
    libyuv::RAWToJ420(chart.rgb.data(), 3 * kWidth, to.planes[0], kWidth, u.data(), kWidth / 2, v.data(),
                      kWidth / 2, kWidth, kHeight);
    libyuv::MergeUVPlane(u.data(), kWidth / 2, v.data(), kWidth / 2, to.planes[1], kWidth, kWidth / 2,
                         kHeight / 2);
    return frame;
}

/// A table that changes nothing, with levels at even steps to the power of `gamma`.
void writeIdentity(const std::string& path, float gamma) {
    LutFile lut{evenLevels(33)};
    for (float& level : lut.levels)
        level = std::pow(level, gamma);
    lut.fill([&](size_t index) { return 255 * lut.levels[index]; });
    writeFile(path, lut.bytes());
}

/// A render core with its effects. Several may be used in turn on one thread.
class Beautifier {
public:
    explicit Beautifier(bool hasLuts) {
        ZecSetBeautyParams(m_effects[0], kSmooth, kWhiten);
        if (hasLuts) {
            addLut(1);
            addLut(1.6f);
            m_passes.insert(m_passes.end() - 1, {Step::lut, Step::mappedLut});
        }
    }
    ~Beautifier() {
        enter();
        for (ZecEffect* effect : m_effects)
            ZecDestoryEffect(effect);
        ZecDestroyRenderCore(m_core);
        eglReleaseThread();
    }
    Beautifier(const Beautifier&) = delete;
    Beautifier& operator=(const Beautifier&) = delete;

    FrameTimes render(Frame& input, Splits splits) {
        enter();
        const ZecImage from = input.image();
        ZecImage to = output.image();
        bool rendered = false;
        const FrameTimes times = timeFrame(splits, m_passes, [&] {
            rendered = ZecRender(m_core, m_effects, &from, &to, 0, 0, 1, kWidth, kHeight, 0);
        });
        if (!rendered || times.draws != m_passes.size())
            throw std::runtime_error("a frame failed or did not draw all passes");
        return times;
    }

    Frame output;

private:
    void addLut(float gamma) {
        const std::string path = m_directory / std::to_string(gamma);
        writeIdentity(path, gamma);
        m_effects.push_back(ZecCreateEffect(1));
        ZecSetLutParams(m_effects.back(), path, 1);
    }

    /// Makes the own context current: a frame would destroy the context of another Beautifier.
    void enter() {
        eglMakeCurrent(eglGetDisplay(EGL_DEFAULT_DISPLAY), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        if (m_core->context)
            ze::makeContextCurrent(*m_core->context);
    }

    const TempDirectory m_directory; ///< Holds the tables, which the first frame reads.
    ZecRenderCore* m_core = ZecCreateRenderCore();
    std::vector<ZecEffect*> m_effects{ZecCreateEffect(0)};
    std::vector<Step> m_passes{Step::yuvToRgb, Step::blur, Step::mix, Step::rgbToYuv};
};

struct Precision {
    Beautifier beautifier;
    std::vector<FrameTimes> split{}, whole{}; ///< Of each round, with Splits::finished and without.
};

double meanLuma(const Frame& frame) {
    double sum = 0;
    for (size_t i = 0; i < kPixels; ++i)
        sum += frame.bytes[i];
    return sum / static_cast<double>(kPixels);
}

int largestDifference(const Frame& a, const Frame& b) {
    int largest = 0;
    for (size_t i = 0; i < a.bytes.size(); ++i)
        largest = std::max(largest, std::abs(a.bytes[i] - b.bytes[i]));
    return largest;
}

/// Smoothing keeps the mean; whitening lifts it by 0.15 of its amount, a little less where white is reached.
void checkFrames(const Frame& input, const Frame& shipped, const Frame& highp) {
    const double lift = meanLuma(highp) - meanLuma(input);
    const double fullLift = 255 * 0.15 * static_cast<double>(kWhiten);
    std::printf("mean luma lifted by %.1f of %.1f levels, highp differs by up to %d levels\n", lift, fullLift,
                largestDifference(shipped, highp));
    if (lift < 0.8 * fullLift || lift > 1.02 * fullLift)
        throw std::runtime_error("the frame is not lifted as whitening does it");
    if (largestDifference(shipped, highp) > 8)
        throw std::runtime_error("the precisions make different frames");
}

void printEnvironment() {
    const auto variable = [](const char* name) {
        const char* value = std::getenv(name);
        return value ? value : "not set";
    };
    std::printf("renderer %s\nEGL_PLATFORM %s, GALLIUM_OVERRIDE_CPU_CAPS %s\n",
                reinterpret_cast<const char*>(glGetString(GL_RENDERER)), variable("EGL_PLATFORM"),
                variable("GALLIUM_OVERRIDE_CPU_CAPS"));
}

using Pick = std::function<double(const FrameTimes&)>;

/// One line of medians: times in milliseconds, the share of the frame, and how many times as long highp
/// takes.
void printLine(const char* name, const std::vector<FrameTimes>& shipped, const std::vector<FrameTimes>& highp,
               const Pick& pick) {
    std::vector<double> seconds, shares, highpSeconds, ratios;
    for (size_t round = 0; round < shipped.size(); ++round) {
        seconds.push_back(pick(shipped[round]));
        shares.push_back(pick(shipped[round]) / shipped[round].whole);
        highpSeconds.push_back(pick(highp[round]));
        ratios.push_back(pick(highp[round]) / pick(shipped[round]));
    }
    std::printf("%-28s %9.3f %8.2f %% %9.3f %9.2f\n", name, 1e3 * median(seconds), 100 * median(shares),
                1e3 * median(highpSeconds), median(ratios));
}

/// Load slows the driver's threads more than it slows the one that calls them, and so flatters that share.
void printQuickest(const std::vector<FrameTimes>& frames) {
    double quickest = frames.front().whole;
    std::vector<double> outside;
    for (const FrameTimes& times : frames) {
        quickest = std::min(quickest, times.whole);
        outside.push_back(times.outsideDriver());
    }
    std::printf("\nThe quickest frame took %.1f ms. Of that, what is not the driver's would be %.2f %%.\n",
                1e3 * quickest, 100 * median(outside) / quickest);
}

void printTable(const Precision& shipped, const Precision& highp) {
    constexpr const char* kNames[kStepCount] = {
        "upload",    "YUV to RGB",        "horizontal blur", "vertical blur and mix",
        "LUT",       "LUT, other levels", "RGB to YUV",      "read-back",
        "unpacking", "the rest"};
    std::printf("%-28s %9s %10s %9s %9s\n", "", "ms", "of frame", "highp ms", "to highp");
    for (size_t step = 0; step < kStepCount; ++step)
        if (shipped.split.front().steps[step] > 0)
            printLine(kNames[step], shipped.split, highp.split,
                      [step](const FrameTimes& times) { return times.steps[step]; });
    const Pick whole = &FrameTimes::whole;
    printLine("frame, every step finished", shipped.split, highp.split, whole);
    printLine("frame", shipped.whole, highp.whole, whole);
    printLine("  of it not the driver's", shipped.whole, highp.whole, &FrameTimes::outsideDriver);
    printQuickest(shipped.whole);
}

void measure(bool hasLuts) {
    Frame input = chartFrame();
    Precision shipped{Beautifier(hasLuts)}, highp{Beautifier(hasLuts)};
    Precision* const both[] = {&shipped, &highp};

    shipped.beautifier.render(input, Splits::asDriverLikes);
    printEnvironment();
    {
        const HighpShaders switched;
        highp.beautifier.render(input, Splits::asDriverLikes);
        if (switched.replacedWords() == 0)
            throw std::runtime_error("the shaders name no lower precision");
    }
    checkFrames(input, shipped.beautifier.output, highp.beautifier.output);

    for (int i = 0; i < kWarmUpFrames; ++i)
        for (Precision* precision : both)
            precision->beautifier.render(input, Splits::finished);
    const auto end = std::chrono::steady_clock::now() + kMaxDuration;
    while (shipped.split.size() < kMaxRounds && std::chrono::steady_clock::now() < end) {
        for (Precision* precision : both)
            precision->whole.push_back(precision->beautifier.render(input, Splits::asDriverLikes));
        for (Precision* precision : both)
            precision->split.push_back(precision->beautifier.render(input, Splits::finished));
    }
    std::printf("%d x %d, NV12, smooth %.1f, whiten %.1f, medians of %zu rounds\n\n", kWidth, kHeight,
                static_cast<double>(kSmooth), static_cast<double>(kWhiten), shipped.split.size());
    printTable(shipped, highp);
}

} // namespace

int main(int argc, char** argv) {
    ze::tool::prepareEnvironment();
    try {
        measure(argc > 1 && std::string(argv[1]) == "lut");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
