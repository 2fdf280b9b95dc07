// Every call of EGL and GL, every read of a table and every allocation that may fail (the calls' with
// operator new may not) fails once, for the host class and for the calls beneath it: a frame is done or as it
// was, and right again as soon as the contract says so.

#include "api/ze_beauty_effect.h"
#include "host/library_log.h"
#include "host/renderer.h"
#include "tests/api/test_frame.h"
#include "tests/support/file_system_double.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/lut_file.h"
#include "tests/support/temp_directory.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <deque>
#include <memory>
#include <new>
#include <optional>

#include <gmock/gmock.h>

// The linker sends the host's calls here. What the library takes with operator new ends the program when
// there is none: it is exempt.
#define ZE_EXEMPT(result, function, parameters, ...)                                                         \
    result __real_##function parameters noexcept;                                                            \
    result __wrap_##function parameters noexcept {                                                           \
        ++t_memory.exempt;                                                                                   \
        const auto value = __real_##function(__VA_ARGS__);                                                   \
        --t_memory.exempt;                                                                                   \
        return value;                                                                                        \
    }
extern "C" {
ZE_EXEMPT(ZecRenderCore*, ZecCreateRenderCore, ())
ZE_EXEMPT(ZecEffect*, ZecCreateEffect, (int type), type)
ZE_EXEMPT(bool, ZecDestoryEffect, (ZecEffect * handle), handle)
ZE_EXEMPT(bool, ZecDestroyRenderCore, (ZecRenderCore * core), core)
ZE_EXEMPT(bool, ZecRender,
          (ZecRenderCore * core, const std::vector<ZecEffect*>& effects, const ZecImage* input,
           ZecImage* output, int format, int standard, int range, int width, int height, int extra),
          core, effects, input, output, format, standard, range, width, height, extra)
}

namespace {

const TempDirectory g_directory;
const std::string g_even = g_directory / "even", g_odd = g_directory / "odd";

/// The second frame is drawn as the first was; the others bring other effects, sizes, colors and at last
/// another order of chroma.
const struct Shot {
    zebeauty::Settings settings;
    int width, height, format, standard, range;
} kShots[] = {{{0.5f, 0.25f, g_even}, 5, 3, 0, 0, 1},
              {{0.5f, 0.25f, g_even}, 5, 3, 0, 0, 1},
              {{0.5f, 0.25f, g_odd, 0.5f, true}, 8, 4, 0, 0, 1},
              {{0, 0.25f, g_even, 0.5f}, 5, 3, 0, 1, 1},
              {{0.5f, 0.25f, g_odd}, 6, 2, 1, 0, 0}};
constexpr size_t kShotCount = std::size(kShots);

struct Result {
    bool isDone = false;
    std::string reason = {};
};

/// Beautifier, less its thread.
struct Host {
    Result render(const Shot& shot, const ZecImage& input, ZecImage& output) {
        const auto planesOf = [](const ZecImage& image) {
            return zebeauty::Planes{image.planes[0], image.planes[1], image.pitches[0], image.pitches[1]};
        };
        zebeauty::Frame frame = {planesOf(input), shot.width, shot.height};
        frame.format = static_cast<zebeauty::PixelFormat>(shot.format);
        frame.standard = static_cast<zebeauty::ColorStandard>(shot.standard);
        frame.range = static_cast<zebeauty::ColorRange>(shot.range);
        try {
            const auto reason = renderer.render(shot.settings, frame, planesOf(output));
            return {!reason, reason.value_or("")};
        } catch (const std::bad_alloc&) {
            return {false, "out of memory"};
        }
    }
    void release() { renderer.release(); }

    static constexpr bool kIsCareful = true;
    zebeauty::Renderer renderer{zebeauty::takeLibraryError};
};

/// The calls, with all three effects in each frame.
struct Calls {
    Result render(const Shot& shot, const ZecImage& input, ZecImage& output) {
        if (!core) {
            core = ZecCreateRenderCore();
            effects = {ZecCreateEffect(0), ZecCreateEffect(1), ZecCreateEffect(1)};
        }
        ZecSetBeautyParams(effects[0], 0.5f, shot.settings.whitening);
        ZecSetLutParams(effects[1], g_even, 0.5f);
        ZecSetLutParams(effects[2], g_odd, shot.settings.intensity);
        zebeauty::takeLibraryError(); // paths are set already
        const bool isDone = ZecRender(core, effects, &input, &output, shot.format, shot.standard, shot.range,
                                      shot.width, shot.height, 0);
        return {isDone, zebeauty::takeLibraryError()};
    }
    void release() {
        static auto& s_kept = *new std::vector<void*>; // what cannot be freed
        for (ZecEffect* effect : effects)
            if (!ZecDestoryEffect(effect))
                s_kept.push_back(effect);
        if (!ZecDestroyRenderCore(core))
            s_kept.push_back(core);
        core = nullptr;
        eglReleaseThread();
    }

    static constexpr bool kIsCareful = false;
    ZecRenderCore* core = nullptr;
    std::vector<ZecEffect*> effects;
};

enum class Fault { call, memory, read, endOfFile };

/// All frames with the `n`-th of something failing, and then the first one once more.
template <class Player>
struct Take {
    Take(Fault fault, int n) {
        for (size_t i = 0; i <= kShotCount; ++i) {
            const Shot& shot = kShots[i % kShotCount];
            inputs.emplace_back(shot.width, shot.height);
            outputs.emplace_back(shot.width, shot.height); // 0x66, which what is read back is not
            fillPicture(inputs[i].image, shot.width, shot.height,
                        [&](int plane, int x, int y) { return 50 * plane + 7 * x + 3 * y + shot.width; });
        }
        std::optional<FileSystemDouble> files;
        if (fault == Fault::read || fault == Fault::endOfFile) {
            files.emplace().mostBytes = 20;
            files->endingRead = fault == Fault::endOfFile ? n : 0;
            files->failures["read"] = {EIO, fault == Fault::read, n - 1};
        }
        if (fault == Fault::call)
            gl.refuse("*", n, GL_OUT_OF_MEMORY);
        t_memory.failsOn = false;
        t_memory.includesNew = std::is_same_v<Player, Host>;
        hasFailed = t_memory.run(fault == Fault::memory ? n : 0, [&] {
            for (size_t i = 0; i < kShotCount; ++i)
                results[i] = player.render(kShots[i], inputs[i].image, outputs[i].image);
            player.release();
        });
        hasFailed = hasFailed || !gl.failed.empty() || (files && files->count("read") >= n);
        gl.clear();
        files.reset();
        results[kShotCount] = player.render(kShots[0], inputs.back().image, outputs.back().image);
        player.release();
    }

    /// The first frame with an error, or the number of frames.
    size_t told() const {
        const auto isTold = [](const Result& result) { return !result.isDone || !result.reason.empty(); };
        return static_cast<size_t>(std::ranges::find_if(results, isTold) - results.begin());
    }
    /// Whether what has failed may stay so until the release: the context, and in the calls what GL was told.
    bool mayLast() const {
        const Result& first = results.at(told());
        return first.reason.starts_with("egl") || (!Player::kIsCareful && first.isDone && !gl.failed.empty());
    }

    GlRecorder gl;
    Player player;
    std::deque<TestFrame> inputs, outputs;
    std::array<Result, kShotCount + 1> results;
    bool hasFailed = false;
};

template <class Player>
class FaultTest : public testing::Test {};
using Players = testing::Types<Host, Calls>;
TYPED_TEST_SUITE(FaultTest, Players);

TYPED_TEST(FaultTest, LeavesTheFrameAloneAndIsOverWithTheNext) {
    zebeauty::catchLibraryErrors(false);
    writeFile(g_even, LutFile{{0, 0.5f, 1}}.fillWithNoise().bytes());
    writeFile(g_odd, LutFile{{0, 0.25f, 1}}.fillWithNoise().bytes());
    const auto good = std::make_unique<Take<TypeParam>>(Fault::call, 0);
    for (const Fault fault : {Fault::call, Fault::memory, Fault::read, Fault::endOfFile}) {
        int n = 1;
        for (bool hasFailed = true; hasFailed; ++n) {
            const Take<TypeParam> take(fault, n);
            hasFailed = take.hasFailed;
            const size_t told = hasFailed ? take.told() : kShotCount;
            const bool isCall = !take.gl.failed.empty(),
                       mayLast = hasFailed && told <= kShotCount && take.mayLast();
            const bool isSilent = take.gl.failed.starts_with("glCreate"); // as the contract says
            for (size_t i = 0; i <= kShotCount; ++i) {
                const auto& [isDone, reason] = take.results[i];
                SCOPED_TRACE(testing::Message() << "kind " << static_cast<int>(fault) << ", " << n << ' '
                                                << take.gl.failed << ", frame " << i << ": " << reason);
                // What GL has to say may be found by the next frame only, which the host class takes for
                // failed.
                const bool isOver = i > told + (isCall && TypeParam::kIsCareful) && !mayLast;
                const bool isSure = (i < told || (TypeParam::kIsCareful && isDone)) && !isSilent;
                const TestFrame untouched(kShots[i % kShotCount].width, kShots[i % kShotCount].height);
                if (isOver || isSure || i == kShotCount)
                    EXPECT_TRUE(isDone && take.outputs[i] == good->outputs[i]);
                else if (!isDone)
                    EXPECT_TRUE(take.outputs[i] == untouched || (TypeParam::kIsCareful && i == 1));
                else
                    EXPECT_THAT(take.outputs[i].planes, testing::Each(testing::Not(testing::Contains(0x66))));
            }
        }
        EXPECT_GT(n, fault == Fault::call ? 1000 : 15);
    }
}

} // namespace
