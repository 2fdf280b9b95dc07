// The effect handle behind the exported entry points, and everything that depends on its type.

#pragma once

#include "api/ze_beauty_effect.h"
#include "gl/frame_size.h"

#include <GLES2/gl2.h>

#include <cstdint>

namespace ze {

class BeautyEffect;
class CLutEffect;

constexpr int32_t kBeautyType = 0;
constexpr int32_t kLutType = 1;

} // namespace ze

/// Owns its effect object: a ze::BeautyEffect for type 0, a ze::CLutEffect for type 1, none for any other
/// type.
struct ZecEffect {
    int32_t type;
    void* effect;
};

namespace ze {

/// A new effect object for a handle of `type`; null for a type without one.
void* makeEffect(int32_t type);

/// Whether the effect takes part in a frame. A handle without an effect never does.
bool isActive(const ZecEffect& handle);

/// Draws `source` with the effect into `target`, two different RGBA textures of `size`; see the effect's own
/// `render`. The result is not passed on: an effect that cannot draw has said so in the log.
void renderEffect(const ZecEffect& handle, GLuint source, FrameSize size, GLuint target);

/// Destroys the effect object, if there is one, and sets `handle.effect` to null. Call with the context
/// current that the effect has drawn in.
void destroyEffect(ZecEffect& handle);

/// The effect of `handle`; null for a null handle, one without an effect and one of another type.
BeautyEffect* beautyEffectOf(ZecEffect* handle);
CLutEffect* lutEffectOf(ZecEffect* handle);

} // namespace ze
