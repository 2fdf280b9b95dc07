// A picture as a file holds it: deeper than 8 bits perhaps, with transparency, color profile and metadata.

#pragma once

#include "tool/pictures/picture.h"

#include <vips/vips8>

namespace ze::tool {

/// Upright pixels in memory, RGB or RGBA of 8 or 16 bits a channel, with what else the file says about them.
/// Copies share the pixels, which never change. Functions here throw `vips::VError` when memory runs out.
using Photo = vips::VImage;

/// Whether the channels of `photo` have 16 bits.
bool isDeep(const Photo& photo);

/// The value of a channel of `photo` that is white, or opaque.
double whiteOf(const Photo& photo);

/// The opaque colors of `photo`; channels of 16 bits are rounded to 8.
Picture pixelsOf(const Photo& photo);

/// The photo with these pixels and nothing else.
Photo photoOf(const Picture& pixels);

/// `photo` with other colors, 8 bits a channel; its transparency and all that belongs to the file stay.
Photo withPixels(const Photo& photo, const Picture& pixels);

/// `photo` plus what changed from `before` to `after`, all three of one size, in the depth of `photo`. Where
/// nothing changed, nothing changes.
Photo withChange(const Photo& photo, const Picture& before, const Picture& after);

/// `left` and `right`, which are of one size, next to each other, in the depth of `right` and with what
/// belongs to the file of `left`.
Photo sideBySide(const Photo& left, const Photo& right);

/// `photo` in sRGB, converted through its profile or, where it has none, the one that libvips calls
/// `fallbackProfile`.
Photo convertedToSrgb(const Photo& photo, const char* fallbackProfile = "srgb");

/// `pixels` with the color profile of `photo`, if it has one.
Photo withProfileOf(const Photo& photo, const Photo& pixels);

/// Takes away the small preview that cameras put into a photo, since it shows the photo as it was.
void removeThumbnail(Photo& photo);

} // namespace ze::tool
