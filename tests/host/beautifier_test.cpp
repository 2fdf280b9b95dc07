// The host class on the driver, called from a thread that has a GL context of its own current.

#include "api/ze_beauty_effect.h"
#include "host/beautifier.h"
#include "host/library_log.h"
#include "tests/api/test_frame.h"
#include "tests/support/gl_fixture.h"
#include "tests/support/lut_file.h"
#include "tests/support/task_count.h"
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

namespace {

Planes planesOf(const TestFrame& frame) {
    return {frame.image.planes[0], frame.image.planes[1], frame.image.pitches[0], frame.image.pitches[1]};
}

Frame frameOf(const TestFrame& frame, int width, int height, bool nv21 = false) {
    return {planesOf(frame), width, height, nv21 ? zebeauty::PixelFormat::nv21 : zebeauty::PixelFormat::nv12};
}

void fillWithNoise(const TestFrame& frame, int width, int height) {
    fillPicture(frame.image, width, height,
                [](int plane, int x, int y) { return 100 + (x * 37 + y * 91 + plane * 17) % 60; });
}

/// What the library itself makes of the same picture in rows without padding.
void renderDirectly(const TestFrame& frame, int width, int height, bool nv21) {
    std::thread([&] {
        ZecImage image = frame.image;
        ZecEffect* effect = ZecCreateEffect(0);
        ZecSetBeautyParams(effect, 0.5f, 0.25f);
        ZecRenderCore* core = ZecCreateRenderCore();
        EXPECT_TRUE(ZecRender(core, {effect}, &image, &image, nv21, 0, 1, width, height, 0));
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
    Beautifier beautifier(m_settings, zebeauty::takeLibraryError);
    for (const auto& [width, height] : {std::pair{1, 1}, {5, 3}, {34, 18}})
        for (bool nv21 : {false, true}) {
            const TestFrame expected(width, height);
            fillWithNoise(expected, width, height);
            renderDirectly(expected, width, height, nv21);
            for (const RowLayout& layout : {RowLayout{}, {3}, {64}, {.roundTo = 8}, {.roundTo = 16}}) {
                SCOPED_TRACE(testing::Message() << width << " x " << height << ", " << layout.padding
                                                << " bytes beyond " << layout.roundTo);
                // Beside the pictures every byte is 0x66: what is written there shows as a difference.
                const RowLayout other = {.padding = 64 - layout.padding};
                const TestFrame input(width, height, layout), expectedInPlace(width, height, layout);
                const TestFrame output(width, height, other), expectedOutput(width, height, other);
                for (const TestFrame* frame : {&expectedOutput, &expectedInPlace})
                    fillPicture(frame->image, width, height,
                                [&](int plane, int x, int y) { return byteAt(expected.image, plane, x, y); });
                fillWithNoise(input, width, height);
                const Frame frame = frameOf(input, width, height, nv21);
                for (int i = 0; i < 2; ++i) { // The second frame takes the short way.
                    EXPECT_EQ(beautifier.process(frame, planesOf(output)), std::nullopt);
                    EXPECT_TRUE(output == expectedOutput);
                }
                EXPECT_EQ(beautifier.process(frame), std::nullopt);
                EXPECT_TRUE(input == expectedInPlace);
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
        fillWithNoise(input, 5, 3);
        EXPECT_EQ(beautifier.process(frameOf(input, 5, 3), planesOf(output)), std::nullopt);
        const TestFrame expected(5, 3, {.padding = 7});
        fillWithNoise(expected, 5, 3);
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
        return int{frame.planes[0][5]};
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
    std::filesystem::copy(path(40), directory / "late");
    EXPECT_NEAR(lumaWith({0, 0, directory / "late"}), 40, 2);
    std::filesystem::copy(path(80), directory / "late", std::filesystem::copy_options::overwrite_existing);
    EXPECT_NEAR(lumaWith({0, 0, directory / "late"}), 40, 2);
    beautifier.reset();
    EXPECT_NEAR(lumaWith({0, 0, directory / "late"}), 80, 2);
}

TEST_F(HostTest, ThreadsTakeTurnsAndItMayMoveAndEndOnAnyOfThem) {
    const auto tasks = [] {
        std::set<std::string> paths;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task"))
            paths.insert(entry.path());
        return paths;
    };
    const auto before = tasks();
    const TestFrame expected(34, 18);
    fillWithNoise(expected, 34, 18);
    renderDirectly(expected, 34, 18, false);
    Beautifier first(m_settings, zebeauty::takeLibraryError);
    const auto processFrames = [&](Beautifier& beautifier) {
        for (int i = 0; i < 5; ++i) {
            const TestFrame frame(34, 18);
            fillWithNoise(frame, 34, 18);
            beautifier.set(m_settings);
            EXPECT_EQ(beautifier.process(frameOf(frame, 34, 18)), std::nullopt);
            EXPECT_TRUE(frame == expected);
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] { processFrames(first); });
    for (std::thread& thread : threads)
        thread.join();

    for (const std::string& task : tasks())
        if (!before.count(task)) {
            EXPECT_THAT(::contentOf(task + "/status"),
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
    const auto reasonOf = [&](auto change) {
        Frame frame = good;
        change(frame);
        return beautifier.process(frame);
    };
    // clang-format off
    EXPECT_THAT(reasonOf([](Frame& f) { f.width = 0; }), Optional(HasSubstr("0x3 pixels")));
    EXPECT_THAT(reasonOf([](Frame& f) { f.height = -1; }), Optional(HasSubstr("5x-1 pixels")));
    EXPECT_THAT(reasonOf([](Frame& f) { f.planes.luma = nullptr; }), Optional(HasSubstr("no luma plane")));
    EXPECT_THAT(reasonOf([](Frame& f) { f.planes.chroma = nullptr; }), Optional(HasSubstr("no chroma plane")));
    EXPECT_THAT(reasonOf([](Frame& f) { f.planes.lumaPitch = 4; }), Optional(HasSubstr("luma pitch is 4")));
    EXPECT_THAT(reasonOf([](Frame& f) { f.planes.chromaPitch = 5; }), Optional(HasSubstr("a row has 6 bytes")));
    EXPECT_THAT(reasonOf([](Frame& f) { f.width = INT32_MAX; f.planes.lumaPitch = INT32_MAX; }), Optional(HasSubstr("2147483648")));
    EXPECT_THAT(reasonOf([](Frame& f) { f.format = static_cast<zebeauty::PixelFormat>(2); }), Optional(HasSubstr("format")));
    EXPECT_THAT(beautifier.process(good, {}), Optional(HasSubstr("no output luma plane")));
    // clang-format on
    EXPECT_THAT(memory.planes[0], Each(0x66));

    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    const TestFrame wide(limit + 1, 1);
    EXPECT_THAT(beautifier.process(frameOf(wide, limit + 1, 1)), Optional(HasSubstr("max texture size")));
    EXPECT_EQ(beautifier.process(good), std::nullopt);
}
