// What the GPU's limit on sizes means for pictures and tables.

#pragma once

namespace ze::tool {

/// Throws `Failure` when a texture of `width` × `height` is too large for the GPU (`failed`), with `unit`
/// ("pixels") for the message, or when there is none (`noGl`).
void checkTextureSize(int width, int height, const char* unit);

} // namespace ze::tool
