// The steps that passes share around their textures: bind with a filter, attach as target, detach.
// Call them on the thread that has the context current, with the core's frame buffer bound.

#pragma once

#include <GLES2/gl2.h>

namespace ze {

/// Binds `texture` to the active unit, checks, and sets its MIN and MAG filter to `filter`.
void bindWithFilter(GLuint texture, GLint filter);

/// Clamps the texture bound to the active unit at its edges, in both directions.
void clampBoundTexture();

/// Attaches `texture` as the color target of the bound frame buffer. 0 detaches.
void attachTarget(GLuint texture);

/// Binds `texture` with GL_NEAREST, attaches it, checks, and clears it. `detachTarget` undoes the attachment.
void attachAndClear(GLuint texture);

/// Leaves the bound frame buffer without a color target.
void detachTarget();

} // namespace ze
