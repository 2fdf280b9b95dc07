// A careful host of the library in one class: beautifies NV12 and NV21 frames from any thread.
//
//     zebeauty::Beautifier beautifier({0.8f, 0.2f}); // smoothing, whitening
//     zebeauty::Frame frame;
//     frame.planes = {luma, chroma, lumaPitch, chromaPitch};
//     frame.width = 1280;
//     frame.height = 720;
//     if (const auto reason = beautifier.process(frame)) // in place
//         std::fprintf(stderr, "%s\n", reason->c_str());
//
// Source for hosts to compile: the .cpp files of this folder, library_log.cpp only where it is wanted,
// together with the library and EGL. C++17.

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zebeauty {

/// The order of the two bytes in a chroma pair: U, V in NV12 and V, U in NV21.
enum class PixelFormat { nv12 = 0, nv21 = 1 };
/// The color matrix.
enum class ColorStandard { bt601 = 0, bt709 = 1 };
/// What luma spans: 16 to 235, or 0 to 255.
enum class ColorRange { video = 0, full = 1 };

/// Where a frame lies in memory. The chroma plane has half of luma's rows, rounded up.
struct Planes {
    uint8_t* luma = nullptr;   ///< Rows of as many bytes as the frame has columns.
    uint8_t* chroma = nullptr; ///< Rows of as many bytes, rounded up to even: pairs.
    int lumaPitch = 0;         ///< Bytes from the start of one row to the start of the next.
    int chromaPitch = 0;       ///< The same for chroma.
};

/// A frame and what its bytes mean. The planes stay the caller's.
struct Frame {
    Planes planes;                                 ///< Where it lies.
    int width = 0;                                 ///< In pixels, at least 1; odd ones are fine.
    int height = 0;                                ///< The same.
    PixelFormat format = PixelFormat::nv12;        ///< The order of its chroma.
    ColorStandard standard = ColorStandard::bt601; ///< The matrix that made it.
    ColorRange range = ColorRange::full;           ///< What its luma spans.
};

/// What is done to frames. Amounts run from 0 to 1: values beyond count as the nearest of the two, NaN as 0.
struct Settings {
    float smoothing = 0;     ///< Of skin.
    float whitening = 0;     ///< Of the whole frame.
    std::string table = {};  ///< Path of a LUT file in UTF-8, see docs/lut.md; empty for none.
    float intensity = 1;     ///< How much of the table's colors is mixed in.
    bool tableFirst = false; ///< Grade with the table before smoothing and whitening, not after.

    /// Whether frames are changed at all. Amounts below 0.001 do nothing.
    bool isActive() const;
};

/// Beautifies frames with one render core of the library and effects as the settings ask for them.
///
/// All calls of the library are made on a thread of the object's own, so that every member function may be
/// called on any thread; an OpenGL ES context of the caller's is never touched. Calls of `process` and
/// `reset` at the same time take turns. The thread, the core and the effects come with the first frame that
/// needs them; as long as the settings change nothing there is neither a thread nor any use of EGL and GL.
/// The thread blocks all signals but those of its own faults. Do not use an object in a process that was
/// forked after its first frame.
///
/// Tables stay loaded, up to eight of them: going back to one costs nothing, and a new one the loading of its
/// file. The ninth has everything made anew, which takes as long as the first frame. A file is read once;
/// give a changed one another name, or call `reset`.
class Beautifier {
public:
    /// Returns and forgets the first error that the library has logged on the calling thread since the last
    /// call; empty when there is none. Must not throw.
    using TakeError = std::function<std::string()>;

    /// `takeError` makes every error that the library logs a reason of `process`; `takeLibraryError` of
    /// host/library_log.h is one. It is called on the object's own thread. Without it `process` knows no more
    /// than that the library has refused a frame, and takes a frame for done whose table could not be loaded,
    /// or whose effect could not be drawn: then the output is what was drawn before, or undefined.
    explicit Beautifier(Settings settings = {}, TakeError takeError = {});

    /// Frees the core and the effects and ends the thread.
    ~Beautifier();

    /// The source may only be destroyed or assigned to afterwards.
    Beautifier(Beautifier&& other) noexcept;
    Beautifier& operator=(Beautifier&& other) noexcept;

    /// Takes effect with the next frame. Does not wait for a frame that is being processed.
    void set(Settings settings);

    /// Beautifies `frame` in place; returns when it is done. Settings that change nothing leave it alone.
    ///
    /// Returns nothing when the frame is done, or a sentence in English that says why it is not. Then the
    /// frame is as it was, except where the driver fails in the middle of frames that went well. Planes that
    /// are missing, rows shorter than the frame's and sizes below 1 are refused here; a frame larger than the
    /// GPU takes, a GL that is not there, and with `takeError` whatever else goes wrong, by the library. Each
    /// frame tries again, but for a context that could not be made: that needs `reset` or another object.
    /// After an error of GL's the next frame makes everything anew. Throws nothing.
    std::optional<std::string> process(const Frame& frame);

    /// The same, from `frame`, which is only read, to `output`. They may share memory in any way. Bytes
    /// between the rows of `output` stay as they are. Settings that change nothing make this a copy.
    std::optional<std::string> process(const Frame& frame, const Planes& output);

    /// Frees the core and the effects; the next frame makes them anew, reading its table again. After a
    /// context could not be made, or was lost, this is how to try again; handles that the library cannot
    /// free, some hundred bytes each time, stay allocated until the process ends.
    void reset();

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

} // namespace zebeauty
