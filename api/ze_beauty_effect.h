// libZeBeautyEffect: beautifies NV12 and NV21 camera frames in memory.
//
//     ZecRenderCore* core = ZecCreateRenderCore();
//     ZecEffect* beauty = ZecCreateEffect(0);
//     ZecSetBeautyParams(beauty, 0.8f, 0.2f);
//     ZecRender(core, {beauty}, &frame, &frame, 0, 0, 1, width, height, 0);   // once per frame, in place
//     ZecDestroyRenderCore(core);
//     ZecDestoryEffect(beauty);
//
// Names are unmangled, but two functions take objects of the C++ standard library: host and library must be
// built against the same one. No function throws; memory that cannot be had ends the program. Failures are
// told by `false`, and most of them are explained in the log (log/log_settings.h). Nothing is locked: use a
// render core and its effects on one thread, the one on which the library's own OpenGL ES context is to live.

#pragma once

#include "convert/ze_image.h"
#include "core/export.h"

#include <string>
#include <vector>

/// The render core: an offscreen OpenGL ES context and the frame resources in it. Opaque.
struct ZecRenderCore;

/// An effect with its parameters and its own GL objects. Opaque.
struct ZecEffect;

extern "C" {

/// Makes a render core. No GL or EGL call is made: the context comes with the first frame that needs it.
/// Never null; `ZecDestroyRenderCore` frees it.
ZE_EXPORT ZecRenderCore* ZecCreateRenderCore() noexcept;

/// Frees `core` with its context and GL objects, and returns true. `core` must not be null.
///
/// A core that has never rendered a frame with an active effect has no context and cannot be destroyed: the
/// log says "There is no opengl context", the result is false and the core stays allocated. The same holds
/// when its context cannot be made current. A context that was current on the calling thread is made current
/// again and then destroyed together with its draw surface; EGL defers that until it stops being current.
ZE_EXPORT bool ZecDestroyRenderCore(ZecRenderCore* core) noexcept;

/// Makes an effect: `type` 0 is the beauty effect (skin smoothing and whitening), 1 the color look-up table.
/// Any other type gives a handle without an effect, which `ZecRender` skips. Never null. A new effect is
/// inactive until its parameters are set. `ZecDestoryEffect` frees it.
ZE_EXPORT ZecEffect* ZecCreateEffect(int type) noexcept;

/// Frees `handle` and its effect, and returns true. Call it while an EGL context is current on this thread,
/// which is the core's after `ZecRender`; without one the log says "There is no opengl context", the result
/// is false and nothing is freed. The current context and its draw surface are destroyed, as EGL does it:
/// once they stop being current. `handle` must not be null. The name is spelled this way on purpose.
ZE_EXPORT bool ZecDestoryEffect(ZecEffect* handle) noexcept;

/// Sets the two amounts of a beauty effect; they hold from the next frame on. Both are meant to lie in 0 to 1
/// and go to the shader as they are, without clamping. `mixFactor` smooths skin, `whitenFactor` lifts red,
/// green and blue of the whole frame by 0.15 times its value. The effect is active when `mixFactor` > 0.001
/// or `whitenFactor` >= 0.001, both compared as doubles. False, and nothing changed, for a null handle, a
/// handle without an effect and a type other than 0.
ZE_EXPORT bool ZecSetBeautyParams(ZecEffect* handle, float mixFactor, float whitenFactor) noexcept;

/// Names the file of a color look-up-table effect (docs/lut.md has its format), a path in UTF-8, and sets
/// how much of the graded color is mixed in from the next frame on. `intensity` is meant to lie in 0 to 1
/// and goes to the shader as it is; the effect is active when it is >= 0.001, compared as doubles. The first
/// path that is not empty stays: each later call sets the intensity alone, and the log says "Lut path is
/// already setted.".
///
/// True whatever becomes of the file, which is read by the first frame that draws the effect. One that cannot
/// be loaded is told by the log alone, and tried again by each frame; that frame's output is then what the
/// effect's target held before. False, and nothing changed, for a null handle, a handle without an effect and
/// a type other than 1.
ZE_EXPORT bool ZecSetLutParams(ZecEffect* handle, const std::string& lutPath, float intensity) noexcept;

/// Renders one frame synchronously: applies the active ones among `effects`, in order, to `input` and writes
/// the planes of `output`, which may describe the same memory. With no active effect the planes are copied
/// byte for byte and GL is not touched. Null entries and handles without an effect are skipped.
///
/// `pixelFormat`: 0 NV12, 1 NV21, any other value is refused ("We only support NV12 and NV21 pixel formats
/// right now!"; with no active effect four messages are logged, nothing is copied and the result is true).
/// `colorStandard`: 0 is BT.601, any other value BT.709. `colorRange`: 1 is full range, any other value video
/// range. `width`, `height`: pixels, 1 to GL_MAX_TEXTURE_SIZE; 0 and less is refused without a message.
/// `extra` is recorded and has no effect. A core keeps the matrix of its first pixel format as long as
/// standard and range stay the same: after a change of the format alone U and V come out swapped. Use a core
/// for each.
///
/// Pitches are at least a row's bytes. The output and the plain copy honor any; with an active effect the
/// input's pitch is honored when it is the row size rounded up to a multiple of 1, 2, 4 or 8 bytes; any other
/// shears the picture. `input` and `output` may share memory when their pitches are the same. When some
/// entries of `effects` are inactive and others active, `output` receives what the last complete chain left
/// behind, or undefined content after a change of size or format: hand over active effects only.
///
/// False on an empty `effects` ("effect array is empty."), on refused arguments, on a size above what the GPU
/// takes, and when the context, the staging buffer, a texture or the first conversion's program cannot be
/// made. The log has the reason except for a size below 1, a context that exists but cannot be made current,
/// every frame after the one whose context could not be made, and GL objects that the driver refuses without
/// an error. GL errors after the first conversion are logged and the result is true.
///
/// Afterwards the library's context is current on this thread, unless another one was current before: that
/// one is made current again, and is destroyed once it stops being current. When the result is false it is
/// not made current again, nor destroyed; arguments that are refused, and a context of the library's that
/// cannot be made or made current, leave it as it was. `core`, and with active effects `input` and `output`,
/// must not be null.
ZE_EXPORT bool ZecRender(ZecRenderCore* core, const std::vector<ZecEffect*>& effects, const ZecImage* input,
                         ZecImage* output, int pixelFormat, int colorStandard, int colorRange, int width,
                         int height, int extra) noexcept;
}
