// The host class on the driver, called from a thread that has a GL context of its own current.

#include "api/ze_beauty_effect.h"
#include "host/beautifier.h"
#include "host/library_log.h"
#include "tests/api/test_frame.h"
#include "tests/support/gl_fixture.h"
#include "tests/support/lut_file.h"
#include "tests/support/other_threads.h"
#include "tests/support/temp_directory.h"

#include <limits>
#include <set>
#include <thread>

using testing::Each;
using testing::HasSubstr;
using testing::Optional;
using zebeauty::Beautifier;
using zebeauty::Frame;
using zebeauty::Planes;
using zebeauty::Settings;

namespace fs = std::filesystem;

namespace {

Planes planesOf(const TestFrame& frame) {
    return {frame.image.planes[0], frame.image.planes[1], frame.image.pitches[0], frame.image.pitches[1]};
}

Frame frameOf(const TestFrame& memory, int width, int height) {
    return {planesOf(memory), width, height};
}

/// A picture of `kind`'s size with noise around skin's luma.
void fillWithNoise(const TestFrame& memory, const Frame& kind) {
    fillPicture(memory.image, kind.width, kind.height,
                [](int plane, int x, int y) { return 100 + (x * 37 + y * 91 + plane * 17) % 60; });
}

/// What the library itself makes of such a picture, in rows without padding.
void renderDirectly(const TestFrame& memory, const Frame& kind) {
    fillWithNoise(memory, kind);
    std::thread([&] {
        ZecImage image = memory.image;
        ZecEffect* effect = ZecCreateEffect(0);
        ZecSetBeautyParams(effect, 0.5f, 0.25f);
        ZecRenderCore* core = ZecCreateRenderCore();
        EXPECT_TRUE(ZecRender(core, {effect}, &image, &image, kind.format == zebeauty::PixelFormat::nv21,
                              kind.standard == zebeauty::ColorStandard::bt709,
                              kind.range == zebeauty::ColorRange::full, kind.width, kind.height, 0));
        EXPECT_TRUE(ZecDestroyRenderCore(core));
        EXPECT_TRUE(ZecDestoryEffect(effect));
        eglReleaseThread();
    }).join();
}

class HostTest : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        zebeauty::catchLibraryErrors(false);
        if (!IsSkipped())
            m_texture = textureOf(reference::Picture(2, 2, {1, 1, 1, 1}));
    }
    void TearDown() override {
        if (!IsSkipped()) {
            EXPECT_THAT(contentOf(m_texture, 2, 2), Each(255)) << "the caller's own context is gone";
        }
        GlTest::TearDown();
    }

    Settings m_settings = {0.5f, 0.25f};
    GLuint m_texture = 0;
};

} // namespace

TEST_F(HostTest, RowsOfAnyLayoutGiveWhatTightOnesGiveTheLibrary) {
    using namespace zebeauty;
    Beautifier beautifier(m_settings, takeLibraryError);
    for (const Frame& kind : {Frame{{}, 5, 3}, Frame{{}, 34, 18}, Frame{{}, 34, 18, PixelFormat::nv21},
                              Frame{{}, 1, 1, PixelFormat::nv21, ColorStandard::bt709, ColorRange::video},
                              Frame{{}, 5, 3, PixelFormat::nv12, ColorStandard::bt709}}) {
        const TestFrame tight(kind.width, kind.height);
        renderDirectly(tight, kind);
        for (const RowLayout& layout : {RowLayout{}, {3}, {64}, {.roundTo = 8}, {.roundTo = 16}}) {
            SCOPED_TRACE(testing::Message()
                         << kind.width << " wide, " << layout.padding << " bytes beyond " << layout.roundTo);
            // Beside the pictures every byte is 0x66: what is written there shows as a difference.
            const TestFrame input(kind.width, kind.height, layout), inPlace(kind.width, kind.height, layout);
            const TestFrame output(kind.width, kind.height, {7}), expected(kind.width, kind.height, {7});
            for (const TestFrame* frame : {&expected, &inPlace})
                fillPicture(frame->image, kind.width, kind.height,
                            [&](int plane, int x, int y) { return byteAt(tight.image, plane, x, y); });
            fillWithNoise(input, kind);
            Frame frame = kind;
            frame.planes = planesOf(input);
            for (int i = 0; i < 2; ++i) { // The second frame takes the short way.
                EXPECT_EQ(beautifier.process(frame, planesOf(output)), std::nullopt);
                EXPECT_TRUE(output == expected);
            }
            EXPECT_EQ(beautifier.process(frame), std::nullopt);
            EXPECT_TRUE(input == inPlace);
        }
    }
}

TEST_F(HostTest, SettingsThatChangeNothingCopyAndNeedNeitherThreadNorGl) {
    const auto before = taskCount();
    Beautifier beautifier;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const Settings& settings : {Settings(), Settings{nan, nan, "no such file", nan},
                                     Settings{0.0005f, 0.0009f}, Settings{-1, -1, "no such file", -1}}) {
        beautifier.set(settings);
        const TestFrame input(5, 3, {.padding = 2}), output(5, 3, {.padding = 7});
        const TestFrame expected(5, 3, {.padding = 7});
        const Frame frame = frameOf(input, 5, 3);
        fillWithNoise(input, frame);
        fillWithNoise(expected, frame);
        EXPECT_EQ(beautifier.process(frame, planesOf(output)), std::nullopt);
        EXPECT_TRUE(output == expected);
    }
    // Rows that move apart within one block of memory.
    std::vector<uint8_t> block = {1, 2, 3, 4, 5, 6, 0, 0};
    Frame frame;
    frame.planes = {block.data(), block.data() + 4, 2, 2};
    frame.width = frame.height = 2;
    EXPECT_EQ(beautifier.process(frame, {block.data(), block.data() + 6, 3, 2}), std::nullopt);
    EXPECT_EQ(block, (std::vector<uint8_t>{1, 2, 3, 3, 4, 6, 5, 6}));
    EXPECT_EQ(taskCount(), before);
}

TEST_F(HostTest, TablesChangeAndOneThatCannotBeLoadedLeavesTheFrameAlone) {
    const TempDirectory directory;
    const auto path = [&](int level) { return directory / std::to_string(level); };
    for (int level = 0; level < 250; level += 20)
        writeFile(path(level), LutFile{evenLevels(2)}.fill([&](size_t) { return level; }).bytes());
    Beautifier beautifier({}, zebeauty::takeLibraryError);
    const auto lumaWith = [&](const Settings& settings) {
        beautifier.set(settings);
        const TestFrame frame(4, 2);
        fillPicture(frame.image, 4, 2, [](int plane, int, int) { return plane == 0 ? 100 : 128; });
        EXPECT_EQ(beautifier.process(frameOf(frame, 4, 2)), std::nullopt);
        return static_cast<int>(frame.planes[0][5]);
    };
    for (int round = 0; round < 2; ++round) // More of them than stay loaded.
        for (int level = 0; level < 250; level += 20)
            EXPECT_NEAR(lumaWith({0, 0, path(level)}), level, 2);
    EXPECT_NEAR(lumaWith({0, 0, path(200), 0.5f}), 150, 2);
    EXPECT_NEAR(lumaWith({0, 1, path(200)}), 200, 2);
    EXPECT_NEAR(lumaWith({0, 1, path(200), 1, true}), 200 + 0.15 * 255, 2);

    beautifier.set({0.5f, 0.5f, directory / "late", 1});
    for (int i = 0; i < 2; ++i) {
        const TestFrame frame(4, 2);
        EXPECT_THAT(beautifier.process(frameOf(frame, 4, 2)), Optional(HasSubstr("open lut file")));
        EXPECT_THAT(frame.planes[0], Each(0x66));
    }
    fs::copy(path(40), directory / "late");
    EXPECT_NEAR(lumaWith({0, 0, directory / "late"}), 40, 2);
}

TEST_F(HostTest, ThreadsTakeTurnsAndItMayMoveAndEndOnAnyOfThem) {
    const auto tasks = [] {
        return std::set<fs::directory_entry>(fs::directory_iterator("/proc/self/task"), {});
    };
    const auto before = tasks();
    const TestFrame expected(34, 18);
    renderDirectly(expected, frameOf(expected, 34, 18));
    Beautifier first(m_settings, zebeauty::takeLibraryError);
    const auto processFrames = [&](Beautifier& beautifier) {
        for (int i = 0; i < 5; ++i) {
            const TestFrame memory(34, 18);
            const Frame frame = frameOf(memory, 34, 18);
            fillWithNoise(memory, frame);
            beautifier.set(m_settings);
            EXPECT_EQ(beautifier.process(frame), std::nullopt);
            EXPECT_TRUE(memory == expected);
        }
    };
    std::thread other([&] { processFrames(first); });
    processFrames(first);
    other.join();

    for (const auto& task : tasks())
        if (!before.count(task)) {
            EXPECT_THAT(::contentOf(task.path() / "status"),
                        testing::ContainsRegex("SigBlk:\t[0-9a-f]*[4-7c-f]...\n")) // Bit 14.
                << "SIGTERM may reach a thread that the host does not know";
        }

    std::thread([&] {
        Beautifier second = std::move(first);
        processFrames(second);
        Beautifier third;
        third = std::move(second);
        processFrames(third);
    }).join();
}

TEST_F(HostTest, SaysWhatIsWrongWithAFrame) {
    Beautifier beautifier(m_settings, zebeauty::takeLibraryError);
    const TestFrame memory(5, 3);
    const Frame good = frameOf(memory, 5, 3);
    const struct {
        const char* reason;
        Frame frame;
    } cases[] = {
        {"0x3 pixels", {good.planes, 0, 3}},
        {"5x-1 pixels", {good.planes, 5, -1}},
        {"no luma plane", {{nullptr, good.planes.chroma, 5, 6}, 5, 3}},
        {"no chroma plane", {{good.planes.luma, nullptr, 5, 6}, 5, 3}},
        {"luma pitch is 5, but a row has 6 bytes", {good.planes, 6, 3}},
        {"chroma pitch is 6, but a row has 8 bytes", {{good.planes.luma, good.planes.chroma, 7, 6}, 7, 3}},
        {"pixel format", {good.planes, 5, 3, static_cast<zebeauty::PixelFormat>(2)}}};
    for (const auto& c : cases)
        EXPECT_THAT(beautifier.process(c.frame), Optional(HasSubstr(c.reason)));
    EXPECT_THAT(beautifier.process(good, {}), Optional(HasSubstr("no output luma plane")));
    EXPECT_THAT(memory.planes[0], Each(0x66));

    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    const TestFrame wide(limit + 1, 1);
    EXPECT_THAT(beautifier.process(frameOf(wide, limit + 1, 1)), Optional(HasSubstr("max texture size")));
    EXPECT_EQ(beautifier.process(good), std::nullopt);
}
