// The element zebeauty of the finished plug-in, in GStreamer's harness.

#include "host/beautifier.h"
#include "tests/support/lut_file.h"
#include "tests/support/other_threads.h"
#include "tests/support/temp_directory.h"

#include <atomic>

#include <gmock/gmock.h>
#include <gst/check/gstharness.h>
#include <gst/controller/controller.h>
#include <gst/video/video.h>
#include <malloc.h>

using testing::HasSubstr;
using zebeauty::Frame;
using zebeauty::Settings;

namespace {

constexpr auto kNv12 = zebeauty::PixelFormat::nv12, kNv21 = zebeauty::PixelFormat::nv21;
constexpr auto k601 = zebeauty::ColorStandard::bt601, k709 = zebeauty::ColorStandard::bt709;
constexpr auto kVideo = zebeauty::ColorRange::video, kFull = zebeauty::ColorRange::full;

class BeautyElementTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        g_setenv("GST_REGISTRY_DISABLE", "yes", TRUE);
        gst_init(nullptr, nullptr);
        ASSERT_TRUE(gst_plugin_load_file(ZE_GST_PLUGIN, nullptr));
    }
    void SetUp() override { gst_element_set_bus(m_element, m_bus); }
    void TearDown() override {
        gst_element_set_bus(m_element, nullptr);
        gst_harness_teardown(m_harness);
        gst_object_unref(m_bus);
    }

    /// Makes frames of these caps, with rows that are `padding` pixels longer than they need be.
    void setCaps(const std::string& fields, guint padding = 0) {
        GstCaps* const caps = gst_caps_from_string(("video/x-raw,framerate=30/1," + fields).c_str());
        gst_video_info_from_caps(&m_info, caps);
        gst_harness_set_src_caps(m_harness, caps);
        GstVideoAlignment alignment{0, 0, 0, padding, {}};
        gst_video_info_align(&m_info, &alignment);
    }

    /// Noise around skin's luma.
    std::string noise() const {
        std::string bytes(m_info.size, '\0');
        for (size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<char>(90 + i * i % 71);
        return bytes;
    }

    /// What the library itself makes of it. `frame` has neither size nor planes.
    std::string expected(Frame frame, const Settings& settings) const {
        std::string bytes = noise();
        auto* const luma = reinterpret_cast<uint8_t*>(bytes.data());
        frame.planes = {luma, luma + m_info.offset[1], m_info.stride[0], m_info.stride[1]};
        frame.width = m_info.width;
        frame.height = m_info.height;
        EXPECT_EQ(zebeauty::Beautifier(settings).process(frame), std::nullopt);
        return bytes;
    }

    GstBuffer* frame() {
        const std::string bytes = noise();
        GstBuffer* const buffer = gst_buffer_new_memdup(bytes.data(), bytes.size());
        GST_BUFFER_PTS(buffer) = 0;
        gst_buffer_add_video_meta_full(buffer, {}, m_info.finfo->format, static_cast<guint>(m_info.width),
                                       static_cast<guint>(m_info.height), 2, m_info.offset, m_info.stride);
        return buffer;
    }

    /// What the element makes of it, or the text of its error.
    std::string push() {
        std::string bytes(m_info.size, '\0');
        if (gst_harness_push(m_harness, frame()) == GST_FLOW_OK) {
            GstBuffer* const buffer = gst_harness_pull(m_harness);
            gst_buffer_extract(buffer, 0, bytes.data(), bytes.size());
            gst_buffer_unref(buffer);
        } else if (GstMessage* const message = gst_bus_pop_filtered(m_bus, GST_MESSAGE_ERROR)) {
            GError* error = nullptr;
            gst_message_parse_error(message, &error, nullptr);
            bytes = error->message;
            g_error_free(error);
            gst_message_unref(message);
        }
        return bytes;
    }

    GstHarness* m_harness = gst_harness_new("zebeauty");
    GstElement* m_element = m_harness->element;
    GstBus* m_bus = gst_bus_new();
    GstVideoInfo m_info{};
};

} // namespace

TEST_F(BeautyElementTest, FramesAreTheLibrarysOwnAndCapsMayChangeInMidStream) {
    const struct {
        const char* caps;
        guint padding;
        Frame kind;
    } cases[] = {
        {"format=NV12,width=34,height=18", 0, {{}, 0, 0, kNv12, k601, kVideo}},
        {"format=NV21,width=5,height=3,colorimetry=bt709", 61, {{}, 0, 0, kNv21, k709, kVideo}},
        {"format=NV12,width=35,height=17,colorimetry=1:4:0:0", 30, {{}, 0, 0, kNv12, k601, kFull}},
        {"format=NV12,width=34,height=18,colorimetry=1:3:5:1", 0, {{}, 0, 0, kNv12, k709, kFull}},
        {"format=NV21,width=4,height=2160", 0, {{}, 0, 0, kNv21, k709, kVideo}},
    };
    g_object_set(m_element, "smooth", 0.5, "whiten", 0.25, nullptr);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.caps);
        setCaps(c.caps, c.padding);
        EXPECT_TRUE(push() == expected(c.kind, {0.5f, 0.25f}));
        Frame other = c.kind;
        other.standard = other.standard == k601 ? k709 : k601;
        EXPECT_TRUE(push() != expected(other, {0.5f, 0.25f})) << "the noise tells no matrices apart";
    }
}

TEST_F(BeautyElementTest, PropertiesTakeEffectWithTheNextFrameAndFailuresAreErrors) {
    const TempDirectory directory;
    const std::string gray = directory / "gray.lut";
    writeFile(gray, LutFile{evenLevels(2)}.fill([](size_t) { return 100; }).bytes());
    setCaps("format=NV12,width=34,height=18,colorimetry=bt2020");
    EXPECT_TRUE(push() == noise());
    g_object_set(m_element, "whiten", 0.5, nullptr);
    EXPECT_THAT(push(), HasSubstr("colorimetry is bt2020: put"));
    setCaps("format=NV12,width=34,height=18,colorimetry=bt2100-pq");
    EXPECT_THAT(push(), HasSubstr("HDR (bt2100-pq)"));

    setCaps("format=NV12,width=34,height=18,colorimetry=bt709");
    const Frame kind{{}, 0, 0, kNv12, k709, kVideo};
    EXPECT_TRUE(push() == expected(kind, {0, 0.5f}));
    g_object_set(m_element, "whiten", 0.0, "lut", gray.c_str(), "intensity", 0.75, nullptr);
    EXPECT_TRUE(push() == expected(kind, {0, 0, gray, 0.75f}));
    g_object_set(m_element, "lut", "/none.lut", nullptr);
    EXPECT_THAT(push(), HasSubstr("open lut file /none.lut"));
    g_object_set(m_element, "lut", nullptr, nullptr);
    EXPECT_TRUE(push() == noise());

    GstControlSource* const source = gst_interpolation_control_source_new();
    gst_timed_value_control_source_set(GST_TIMED_VALUE_CONTROL_SOURCE(source), 0, 0.25);
    gst_object_add_control_binding(GST_OBJECT(m_element),
                                   gst_direct_control_binding_new(GST_OBJECT(m_element), "whiten", source));
    gst_object_unref(source);
    EXPECT_TRUE(push() == expected(kind, {0, 0.25f}));
    m_info.size /= 2;
    EXPECT_THAT(push(), HasSubstr("memory of a frame"));
}

// Whoever shows the frame may show the other half of it.
TEST_F(BeautyElementTest, AllOfACroppedFrameIsBeautified) {
    g_object_set(m_element, "whiten", 0.25, nullptr);
    setCaps("format=NV12,width=16,height=8");
    gst_video_info_set_format(&m_info, GST_VIDEO_FORMAT_NV12, 34, 18);
    EXPECT_TRUE(push() == expected({{}, 0, 0, kNv12, k601, kVideo}, {0, 0.25f}));
}

TEST_F(BeautyElementTest, AHundredCyclesEndingAtAnyMomentKeepMemoryThreadsAndDescriptorsLevel) {
    setCaps("format=NV12,width=34,height=18");
    gst_bus_set_flushing(m_bus, TRUE);
    gst_harness_set_drop_buffers(m_harness, TRUE);
    std::atomic<bool> isOver = false;
    const auto stream = [&] {
        GstSegment segment;
        gst_segment_init(&segment, GST_FORMAT_TIME);
        gst_harness_push_event(m_harness, gst_event_new_stream_start("camera"));
        GstCaps* const caps = gst_video_info_to_caps(&m_info);
        gst_harness_push_event(m_harness, gst_event_new_caps(caps));
        gst_caps_unref(caps);
        gst_harness_push_event(m_harness, gst_event_new_segment(&segment));
        while (gst_harness_push(m_harness, frame()) == GST_FLOW_OK)
            g_object_set(m_element, "smooth", 0.5, "whiten", 0.25, nullptr);
    };
    std::thread streaming([&] {
        while (!isOver) // Frames end with the pad's activity, and begin on another thread.
            std::thread(stream).join();
    });
    const auto used = [] {
        const auto descriptors = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
        return std::pair(taskCount(), descriptors);
    };
    auto early = used();
    size_t memory = 0;
    for (int i = 0; i < 100; ++i) {
        gst_element_set_state(m_element, GST_STATE_PLAYING);
        const guint received = gst_harness_buffers_received(m_harness);
        if (i % 8)
            g_usleep(static_cast<gulong>(i * 211));
        else
            EXPECT_TRUE(becomesTrue([&] { return gst_harness_buffers_received(m_harness) > received + 2; }));
        gst_element_set_state(m_element, GST_STATE_NULL);
        for (auto* const pull : {gst_harness_try_pull_event, gst_harness_try_pull_upstream_event})
            while (GstEvent* const event = pull(m_harness))
                gst_event_unref(event);
        if (i == 40) {
            early = used();
            memory = mallinfo2().uordblks;
        }
    }
    EXPECT_TRUE(becomesTrue([&] { return used() == early; })); // which differ while a thread begins or ends
    EXPECT_LT(mallinfo2().uordblks, memory + 65536);
    isOver = true;
    streaming.join();
}
