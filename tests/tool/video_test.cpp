// Moving pictures through the program: every frame, its time, and all that is beside the frames.

#include "host/beautifier.h"
#include "host/library_log.h"
#include "tests/tool/program.h"
#include "tool/video/clip_clock.h"
#include "tool/video/clip_pipeline.h"

#include <array>

using namespace ze::tool;

namespace {

constexpr char kEffects[] = " --smooth 0.9 --whiten 0.3 ";
constexpr int kFrames = 3;

// Frames of noise around skin colors, one behind the other without padding.
std::string rawFrames(int width, int height) {
    const int bytes = width * height + (width + 1) / 2 * 2 * ((height + 1) / 2);
    std::string frames;
    unsigned state = 1;
    for (int i = 0; i < kFrames * bytes; ++i)
        frames += static_cast<char>(96 + ((state = state * 1664525 + 1013904223) >> 26));
    return frames;
}

// What an app gets that hands each of the frames to the library.
std::string renderedDirectly(std::string frames, zebeauty::Frame frame) {
    zebeauty::Beautifier beautifier({0.9f, 0.3f}, zebeauty::takeLibraryError);
    auto* at = reinterpret_cast<uint8_t*>(frames.data());
    for (int i = 0; i < kFrames; ++i) {
        const int pitch = (frame.width + 1) / 2 * 2;
        frame.planes = {at, at + frame.width * frame.height, frame.width, pitch};
        EXPECT_EQ(beautifier.process(frame).value_or(""), "");
        at = frame.planes.chroma + pitch * ((frame.height + 1) / 2);
    }
    return frames;
}

class Video : public Program {
protected:
    void SetUp() override {
        if (run("info") == 4)
            GTEST_SKIP() << "there is no OpenGL ES here";
        if (std::system("ffmpeg -version >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "there is no ffmpeg here";
    }

    // What a shell prints in the directory.
    std::string shell(const std::string& command) const {
        const std::string out = m_streams / "shell";
        EXPECT_EQ(
            std::system(("cd '" + m_directory.path() + "' && (" + command + ") >'" + out + "'").c_str()), 0)
            << command;
        return contentOf(out);
    }

    void make(const std::string& arguments) const { shell("ffmpeg -v error -y " + arguments); }

    // `fields` as ffprobe shows them.
    std::string probe(const std::string& name, const std::string& fields) const {
        return shell("ffprobe -v error -of csv " + fields + " '" + name + "'");
    }

    // A sum of each frame of video, as players show them.
    std::string frames(const std::string& name) const {
        return shell("ffmpeg -v error -i " + name + " -map 0:v -f framemd5 - | grep -v '^#' | cut -d, -f6");
    }

    // The times of all packets, by stream, in the order in which they are shown.
    std::string times(const std::string& name) const {
        return shell("ffprobe -v error -of csv=p=0 -show_entries packet=stream_index,pts_time '" + name +
                     "' | cut -d, -f1,2 | sort -t, -k1,1n -k2,2n");
    }
};

} // namespace

TEST_F(Video, IsByteForByteWhatTheLibraryMakesOfTheFrames) {
    int kind = 0;
    for (const char* const layout : {"nv12", "nv21"})
        for (const auto& [width, height] : {std::pair{34, 18}, {33, 17}})
            for (const char* const standard : {"bt601", "bt709"}) {
                const std::string range = kind++ % 2 == 0 ? "full" : "video";
                const std::string size = std::to_string(width) + "x" + std::to_string(height);
                const std::string raw = std::string(" --raw ") + layout + " --size " + size + " --standard " +
                                        standard + " --range " + range;
                SCOPED_TRACE(raw);
                zebeauty::Frame frame;
                frame.width = width;
                frame.height = height;
                frame.format = static_cast<zebeauty::PixelFormat>(std::string(layout) == "nv21");
                frame.standard = static_cast<zebeauty::ColorStandard>(std::string(standard) == "bt709");
                frame.range = static_cast<zebeauty::ColorRange>(range == "full");
                write("in", rawFrames(width, height));
                const std::string expected = renderedDirectly(rawFrames(width, height), frame);
                ASSERT_EQ(run("render - -" + raw + kEffects + " <in"), 0) << errorText();
                EXPECT_TRUE(outputText() == expected);
                if (std::string(layout) == "nv21")
                    continue; // files hold planes, which are rendered as NV12
                // The tags of a lossless clip say the same as the options.
                ASSERT_EQ(run("render in in.mkv -y --lossless --smooth 0 --whiten 0" + raw), 0)
                    << errorText();
                ASSERT_EQ(run(std::string("render in.mkv - --as nv12") + kEffects), 0) << errorText();
                EXPECT_TRUE(outputText() == expected);
            }
}

TEST_F(Video, KeepsTimesStreamsAndTagsOfEveryKindOfClip) {
    const std::string source = "-f lavfi -i testsrc2=s=64x48:r=25:d=0.8 ", tone = "-f lavfi -i sine=d=0.8 ";
    write("words.srt", "1\n00:00:00,200 --> 00:00:00,600\nHello\n\n");
    write("chapters", ";FFMETADATA1\ntitle=Holiday\n[CHAPTER]\nTIMEBASE=1/10\nSTART=2\nEND=5\ntitle=one\n");
    const std::array<std::string, 3> clips[] = {
        {"phone.mp4", "out.mp4",
         source + tone +
             "-i chapters -map 0:v -map 1:a -map_metadata 2 -c:v libx264 -bf 3 -pix_fmt yuv420p "
             "-colorspace bt709 -color_trc bt709 -color_primaries bt709 -color_range tv "
             "-metadata:s:a language=eng tmp.mp4 && "
             "ffmpeg -v error -i tmp.mp4 -map 0:v -map 0:a -c copy -metadata:s:v:0 rotate=90 "
             "-metadata com.android.version=13 -movflags use_metadata_tags"},
        {"variable.mkv", "out.webm",
         source + "-vf 'select=not(mod(n\\,3))+eq(n\\,4)' -vsync vfr -c:v ffv1 -colorspace bt709"},
        {"streams.mkv", "out.mkv",
         source + tone +
             "-i words.srt -i chapters -map 0 -map 1 -map 1 -map 1 -map 2 -c:v ffv1 -pix_fmt yuv420p -c:a:0 "
             "flac "
             "-c:a:1 wmav2 -c:a:2 pcm_s16le -disposition:a:1 default -attach words.srt "
             "-metadata:s:t mimetype=text/plain"},
        {"late.mp4", "out.mp4", source + tone + "-c:v libx264 -bf 2 -pix_fmt yuv420p -output_ts_offset 1.5"},
        {"full.mkv", "out.mkv", source + "-pix_fmt yuv420p -color_range pc -colorspace smpte170m -c:v ffv1"},
        {"deep.mkv", "out.mkv", source + "-pix_fmt yuv422p10 -c:v ffv1"},
        {"dense.mp4", "out.mp4", source + "-pix_fmt yuv444p -c:v libx264"},
        {"one.mp4", "out.mp4", source + "-frames:v 1 -c:v libx264 -pix_fmt yuv420p"},
        {"odd.mkv", "out.webm", "-f lavfi -i testsrc=s=33x17:r=25:d=0.2 -pix_fmt yuv420p -c:v ffv1"},
        {"clip.y4m", "out.y4m", source + "-pix_fmt yuv420p"},
        {"fields.mkv", "out.mkv", source + "-vf interlace=scan=bff -pix_fmt yuv420p -c:v ffv1"},
    };
    const std::string same =
        "-show_entries stream=codec_type,width,height,field_order,color_space,color_transfer,color_primaries,"
        "sample_aspect_ratio:stream_disposition=default:stream_side_data=rotation:"
        "chapter=start_time,end_time:chapter_tags=title:format_tags=title,com.android.version";
    for (const auto& [input, output, arguments] : clips) {
        SCOPED_TRACE(input);
        make(arguments + " " + input);
        ASSERT_EQ(run("render " + input + " " + output + " -y --smooth 0.5"), 0) << errorText();
        EXPECT_EQ(times(output), times(input));
        EXPECT_EQ(probe(output, same), probe(input, same));
        const std::string sound = "-select_streams a -show_entries stream=codec_name:stream_tags=language";
        EXPECT_EQ(probe(output, sound), probe(input, sound));
    }
    ASSERT_EQ(run("render variable.mkv varied.y4m --compare both.mov"), 0) << errorText();
    EXPECT_EQ(errorText(), "zebeauty: varied.y4m: its color matrix, bt709, is left out: .y4m names none, and "
                           "smpte170m is taken for it at this size\n"
                           "zebeauty: varied.y4m: frames come at varying times, which are left out: .y4m has "
                           "frames alone, at one rate\n");
}

TEST_F(Video, MakesBt709OfBt2020InLinearLight) {
    write("frame.yuv", std::string(256, '\x78') + std::string(256, '\x6e') + std::string(256, '\x96'));
    make("-f rawvideo -pix_fmt yuv444p -s 16x16 -i frame.yuv -c:v ffv1 -colorspace bt2020nc -color_range tv "
         "wide.mkv");
    ASSERT_EQ(run("render wide.mkv out.mkv --lossless --smooth 0 --whiten 0"), 0) << errorText();
    EXPECT_EQ(probe("out.mkv", "-show_entries stream=color_space,color_transfer,color_primaries"),
              "stream,bt709,bt709,bt709\n");
    ASSERT_EQ(run("render out.mkv - --as nv12 --smooth 0 --whiten 0"), 0) << errorText();
    const std::string frame = outputText(); // by the equations of BT.2020, BT.1886 and BT.709
    EXPECT_NEAR(static_cast<uint8_t>(frame[0]), 116.6, 1);
    EXPECT_NEAR(static_cast<uint8_t>(frame[256]), 108.7, 1);
    EXPECT_NEAR(static_cast<uint8_t>(frame[257]), 164.0, 1);
}

TEST_F(Video, TakesAllFramesAndSoundOfOldFilesAndBareStreams) {
    make("-f lavfi -i testsrc2=s=64x48:r=25:d=0.8 -f lavfi -i sine=d=0.8 -c:v mpeg4 -c:a adpcm_ms old.avi "
         "-c:v mpeg2video -bf 2 -c:a mp2 disc.mpg -map 0 -c:v libx264 -bf 2 -pix_fmt yuv420p bare.h264 "
         "-c:v libx264 -pix_fmt yuv420p -c:a aac cast.ts");
    for (const auto& [input, sound] : {std::pair{"old.avi", "stream,audio,18\n"},
                                       {"disc.mpg", "stream,audio,31\n"},
                                       {"bare.h264", ""},
                                       {"cast.ts", "stream,audio,36\n"}}) {
        run(std::string("render ") + input + " - --as mkv | tee out.mkv"); // a pipe wants its head at once
        EXPECT_EQ(errorText(), "");
        EXPECT_EQ(probe("out.mkv", "-count_packets -show_entries stream=codec_type,nb_read_packets"),
                  std::string("stream,video,20\n") + sound);
    }
}

TEST_F(Video, BringsWhatChangesInTheMiddleToTheFirstFormat) {
    make("-f lavfi -i testsrc2=s=64x48:r=25:d=0.4 -c:v libx264 -pix_fmt yuv420p first.ts");
    const std::string then = "-f lavfi -i testsrc2=s=98x66:r=25:d=0.4 -c:v libx264 -output_ts_offset 0.4 ";
    make(then + "-pix_fmt yuv444p then.ts");
    make(then + "-pix_fmt yuv420p -color_trc smpte2084 hdr.ts");
    shell("cat first.ts then.ts > clip.ts; cat first.ts hdr.ts > late.ts");
    ASSERT_EQ(run("render clip.ts out.mp4"), 0);
    EXPECT_THAT(errorText(),
                testing::HasSubstr("zebeauty: clip.ts: changes its size; all frames are scaled to "
                                   "the first one's, 64x48\nzebeauty: clip.ts: 8-bit 4:4:4 "));
    EXPECT_EQ(probe("out.mp4", "-count_packets -show_entries stream=width,height,nb_read_packets"),
              "stream,64,48,20\n");
    EXPECT_EQ(run("render late.ts late.mp4"), 3);
    EXPECT_THAT(errorText(), testing::HasSubstr("late.ts: is HDR (PQ); "));
    EXPECT_EQ(fileNames().count("late.mp4"), 0);
}

TEST_F(Video, CarriesTimesOnWhereTheClockJumps) {
    const std::string source = "-f lavfi -i testsrc2=s=64x48:r=25:d=1 -f lavfi -i sine=d=1 -c:v libx264 "
                               "-pix_fmt yuv420p -c:a mp2 ";
    make(source + "soon.ts");
    make(source + "-output_ts_offset 1000 late.ts");
    make(source + "-f vob soon.mpg");
    for (const char* const parts :
         {"soon.ts soon.ts", "soon.ts late.ts", "late.ts soon.ts", "soon.mpg soon.mpg"}) {
        SCOPED_TRACE(parts);
        shell(std::string("cat ") + parts + " >clip");
        ASSERT_EQ(run("render clip out.mkv -y --smooth 0.5"), 0) << errorText();
        // Milliseconds from packet to packet: 40 of frames, 26 of sound; what overlaps is put close together.
        EXPECT_EQ(
            shell("ffprobe -v error -of csv=p=0 -select_streams v -show_entries packet=pts_time out.mkv "
                  "| sort -n | awk 'NR > 1 {print int(($1 - t) * 1000 + .5)} {t = $1}' | uniq -c"),
            "     49 40\n");
        EXPECT_EQ(
            shell("ffprobe -v error -of csv=p=0 -select_streams a -show_entries packet=pts_time out.mkv "
                  "| awk 'NR > 1 && $1 - t > .06 {print} {t = $1} END {print int(t * 10 + .5)}'"),
            "20\n");
    }
}

TEST_F(Video, CutsFramesAndSoundAtTheSameTimes) {
    make("-f lavfi -i testsrc2=s=64x48:r=25:d=4 -f lavfi -i sine=d=4 -c:v libx264 -g 25 -bf 3 -pix_fmt "
         "yuv420p "
         "-c:a pcm_s16le whole.mov");
    const std::string lossless = " -y --lossless --smooth 0.5";
    ASSERT_EQ(run("render whole.mov whole.mkv" + lossless), 0) << errorText();
    ASSERT_EQ(run("render whole.mov first.mkv --to 1.8" + lossless), 0) << errorText();
    ASSERT_EQ(run("render whole.mov second.mkv --from 1.8 --to 0:03.2" + lossless), 0) << errorText();
    ASSERT_EQ(run("render whole.mov third.mkv --from 3.2 --compare both.mp4" + lossless), 2) << errorText();
    ASSERT_EQ(run("render whole.mov third.mkv --from 3.2 --compare both.mkv" + lossless), 0) << errorText();
    EXPECT_EQ(frames("first.mkv") + frames("second.mkv") + frames("third.mkv"), frames("whole.mkv"));
    EXPECT_THAT(probe("both.mkv", "-count_packets -show_entries stream=width,height,nb_read_packets"),
                testing::HasSubstr("128,48,20"));
    EXPECT_THAT(times("second.mkv"), testing::StartsWith("0,0.000000\n0,0.040000\n"));
    EXPECT_EQ(frames("both.mkv -vf crop=64:48:64:0"), frames("third.mkv"));

    make("-i whole.mov -c:v copy -c:a libopus -output_ts_offset 2 late.mkv -c:v copy -c:a libopus early.mkv");
    ASSERT_EQ(run("render early.mkv -y second.mkv --from 1 --to 2"), 0) << errorText(); // begins below 0
    EXPECT_THAT(probe("second.mkv", "-select_streams v -count_packets -show_entries stream=nb_read_packets"),
                testing::HasSubstr("25"));
    EXPECT_EQ(run("render late.mkv -y second.mkv --strict"), 0) << errorText();
}

TEST_F(Video, ComparesFromLeftToRightWhereFramesAreTurned) {
    make("-f lavfi -i testsrc2=s=64x48:r=25:d=0.2 -c:v libx264 -pix_fmt yuv420p clip.mp4");
    for (const int angle : {90, 180, 270}) {
        SCOPED_TRACE(angle);
        make("-i clip.mp4 -c copy -metadata:s:v rotate=" + std::to_string(angle) + " turned.mp4");
        ASSERT_EQ(run("render turned.mp4 out.mp4 -y --compare both.mp4 --encoder-option qp=0"), 0)
            << errorText();
        EXPECT_EQ(frames("both.mp4 -vf crop=iw/2:ih:0:0"), frames("turned.mp4"));
        EXPECT_EQ(frames("both.mp4 -vf crop=iw/2:ih:iw/2:0"), frames("out.mp4"));
    }
    make("-i clip.mp4 -c copy -bsf:v h264_metadata=display_orientation=insert:rotate=90 inside.mp4");
    ASSERT_EQ(run("render inside.mp4 out.mp4 -y"), 0) << errorText();
    EXPECT_THAT(probe("out.mp4", "-show_entries stream_side_data=rotation"), testing::HasSubstr("90"));
}

TEST_F(Video, EndsWithAReasonAndLeavesNothingBehind) {
    const std::string source = "-f lavfi -i testsrc2=s=64x48:r=25:d=0.8 ";
    make(source + "-pix_fmt yuv420p clip.y4m -c:v libx264 -pix_fmt yuv420p -movflags faststart clip.mp4 "
                  "-pix_fmt yuv420p -color_trc smpte2084 -c:v libx264 hdr.mp4");
    make(source + "-f lavfi -i sine=d=0.8 -i clip.mp4 -map 1 -c:a libmp3lame sound.mp3 "
                  "-map 0 -map 1 -c:a flac -c:v ffv1 sound.mkv");
    make("-f lavfi -i testsrc=s=33x17:r=25:d=0.2 -pix_fmt yuv420p -c:v ffv1 odd.mkv");
    make("-i clip.mp4 -c copy -metadata:s:v rotate=90 turned.mp4");
    write("short.y4m", contentOf(m_directory / "clip.y4m").substr(0, 20000));
    write("nothing", "");
    shell("mkfifo pipe");
    write("empty.y4m", "YUV4MPEG2 W64 H48 F25:1 Ip A1:1 C420jpeg\n");
    make("-f lavfi -i testsrc2=s=64x48:r=5:d=4 -pix_fmt yuv420p -c:v ffv1 cut.mkv");
    write("cut.mkv", contentOf(m_directory / "cut.mkv").substr(0, 12000));
    const std::string movie = contentOf(m_directory / "clip.mp4");
    write("list", "ffconcat version 1.0\nfile clip.mp4\n");
    write("cut.mp4", movie.substr(0, movie.size() - 300));
    const struct {
        const char* arguments;
        int code;
        const char* reason;
    } cases[] = {
        {"render hdr.mp4 out.mp4", 3, "hdr.mp4: is HDR \\(PQ\\); .*tonemap.*"},
        {"render short.y4m out.mkv", 3, "short.y4m: frame 5 is short: [0-9]+ of 4608 bytes"},
        {"render clip.y4m out.mkv --raw nv12 --size 64x48 --rate 5 --from 3", 3,
         "clip.y4m: frame 21 is short: .*"},
        {"render list out.mp4", 3, "list: cannot be read: .*"},
        {"render nothing out.mp4", 3, "nothing: is empty"},
        {"render empty.y4m out.mkv", 3, "empty.y4m: has no .*"},
        {"render cut.mp4 out.mp4 --strict", 3, "cut.mp4: is damaged near .*"},
        {"render cut.mkv out.mkv --strict", 3, "cut.mkv: ends [1-9].* s early"},
        {"render sound.mp3 out.mp4", 3, "sound.mp3: has no moving pictures"},
        {"render sound.mkv out.webm", 2,
         "out.webm: stream 1 .audio, flac. has no place in .webm; .mkv holds .*"},
        {"render turned.mp4 out.mp4 --compare out.mkv", 2,
         "out.mkv: the rotation of frames by 90 degrees has no place in .mkv; .mp4 and .mov hold it.*"},
        {"render odd.mkv out.mp4", 2, "out.mp4: 33x17 pixels: .*even.*"},
        {"render clip.mp4 out.mp4 --quality 3", 2, "--quality is for pictures.*"},
        {"render clip.mp4 out.mp4 --encoder-option no=1", 2, ".*libx264 has no option 'no'.*"},
        {"render clip.mp4 out.mp4 --crf 99", 2,
         "out.mp4: --crf: the encoder libx264 takes 0 to 51, not 99.*"},
        {"render clip.mp4 --into out", 2, "clip.mp4: is a clip; .*"},
        {"render clip.mp4 out.mp4 --from .4 --to .3", 2, "--to is not after --from.*"},
        {"render clip.mp4 out.mp4 --from 5", 3, "clip.mp4: has no frames between --from and --to"},
        {"render clip.mp4 missing/out.mp4", 1,
         "missing/out.mp4: cannot be written: No such file or directory"},
        {"render --raw nv12 --size 64x48 /dev/zero out.mkv", -1, "/dev/zero: interrupted"},
        {"render --raw nv12 --size 64x48 /dev/zero -", -1, "/dev/zero: interrupted"},
        {"render clip.y4m pipe", -1, "clip.y4m: interrupted"},
    };
    const auto names = fileNames();
    for (const auto& [arguments, code, reason] : cases) {
        const bool isEndless = code < 0;
        const int result = run(arguments, isEndless ? "timeout -s TERM 1" : "");
        EXPECT_EQ(result, isEndless ? 124 : code) << arguments;
        EXPECT_THAT(errorText(), testing::MatchesRegex("zebeauty: " + std::string(reason) + "\n"));
    }
    EXPECT_EQ(fileNames(), names);
    EXPECT_EQ(run("render cut.mp4 out.mp4"), 0);
    EXPECT_THAT(errorText(), testing::HasSubstr("is damaged: "));
    EXPECT_EQ(run("render cut.mp4 out.mp4 --skip-existing"), 0);
    run("render clip.y4m - 2>words | head -c 1");
    EXPECT_EQ(contentOf(m_directory / "words"), "");
    run("render clip.y4m - --compare both.mkv 2>words | head -c 1");
    EXPECT_THAT(contentOf(m_directory / "words"), testing::StartsWith("zebeauty: both.mkv: is not written"));
}

TEST(ClipClock, MovesStreamsAlikeThoughTheyGetToAJumpOneAfterTheOther) {
    const auto close = [](AVFormatContext* container) { avformat_free_context(container); };
    const std::unique_ptr<AVFormatContext, decltype(close)> container(avformat_alloc_context(), close);
    container->iformat = av_find_input_format("mpegts");
    for (const AVMediaType type : {AVMEDIA_TYPE_VIDEO, AVMEDIA_TYPE_AUDIO}) {
        AVStream* const stream = avformat_new_stream(container.get(), nullptr);
        stream->codecpar->codec_type = type;
        stream->time_base = {1, 1000};
    }
    for (const int jump : {-3000, 20000})
        for (const int lag : {-1500, 0, 700, 3000}) { // of sound behind the frames, in the file
            ClipClock clock(*container, 0);
            std::map<int, std::vector<int64_t>> times;
            const auto add = [&](int stream, int time) {
                FfmpegPtr<AVPacket> packet = owned(av_packet_alloc());
                packet->stream_index = stream;
                packet->pts = packet->dts = time >= 5000 ? time + jump : time;
                if (stream == 0 && time == 6000)
                    packet->pts = packet->dts = 900000; // is damaged, as are the next two
                if (stream == 0 && time == 7000)
                    packet->pts = 800000;
                if (stream == 1 && time == 7000)
                    packet->dts = 700000;
                packet->duration = 50;
                clock.add(std::move(packet));
                while (const FfmpegPtr<AVPacket> next = clock.take())
                    times[next->stream_index].push_back(next->pts);
            };
            for (int time = -3000; time < 14000; time += 50) {
                if (time >= 0 && time < 10000)
                    add(0, time);
                if (time - lag >= 0 && time - lag < 10000)
                    add(1, time - lag);
            }
            clock.finish();
            for (const int stream : {0, 1})
                for (size_t i = 0; i < 200; ++i)
                    EXPECT_EQ(times[stream].at(i), i * 50);
        }
}

TEST(ClipPipeline, EndsAllStagesWithTheFirstError) {
    for (int failing = 0; failing < 3; ++failing) {
        const auto fail = [failing](int stage, int thing) {
            if (stage == failing && thing == 20)
                throw stage;
        };
        int next = 0;
        const auto run = [&] {
            ClipPipeline<int>().run(
                [&] {
                    fail(0, next);
                    return std::optional<int>(next++);
                },
                [&](int& thing) { fail(1, thing); }, [&](int thing) { fail(2, thing); });
        };
        EXPECT_THROW(run(), int);
        EXPECT_LE(next, 30);
    }
}
