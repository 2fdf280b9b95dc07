#include "tool/pictures/photo.h"

#include "tool/pictures/vips.h"

namespace ze::tool {
namespace {

using vips::VImage;

constexpr int kColors = 3;
constexpr int kDeepSteps = 257; // of 16 bits in one step of 8

// `pixels` as libvips sees them, without a copy; valid while they live.
VImage viewOf(const Picture& pixels) {
    startVips();
    return VImage::new_from_memory(const_cast<uint8_t*>(pixels.rgb.data()), pixels.rgb.size(), pixels.width,
                                   pixels.height, kColors, VIPS_FORMAT_UCHAR)
        .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

VImage colorsOf(const Photo& photo) {
    return photo.extract_band(0, VImage::option()->set("n", kColors));
}

// `colors`, the transparency of `photo`, and all fields of its header that are about the file.
Photo inPlaceOf(const Photo& photo, const VImage& colors) {
    VImage whole = colors;
    if (photo.bands() > kColors) {
        const VImage alpha = photo.extract_band(kColors);
        whole = whole.bandjoin(isDeep(photo) && colors.format() == VIPS_FORMAT_UCHAR
                                   ? (alpha / kDeepSteps).rint().cast(VIPS_FORMAT_UCHAR)
                                   : alpha);
    }
    const bool deep = whole.format() == VIPS_FORMAT_USHORT;
    whole = whole
                .copy(VImage::option()
                          ->set("interpretation", deep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB)
                          ->set("xres", photo.xres())
                          ->set("yres", photo.yres()))
                .copy_memory();
    const auto copyField = [](VipsImage*, const char* name, GValue* value, void* to) -> void* {
        vips_image_set(static_cast<VipsImage*>(to), name, value);
        return nullptr;
    };
    vips_image_map(photo.get_image(), copyField, whole.get_image());
    vips_autorot_remove_angle(whole.get_image()); // libvips finds the mark again in the EXIF block
    removeThumbnail(whole);
    return whole;
}

} // namespace

bool isDeep(const Photo& photo) {
    return photo.format() == VIPS_FORMAT_USHORT;
}

double whiteOf(const Photo& photo) {
    return isDeep(photo) ? 65535 : 255;
}

Picture pixelsOf(const Photo& photo) {
    VImage colors = colorsOf(photo);
    if (isDeep(photo))
        colors = (colors / kDeepSteps).rint().cast(VIPS_FORMAT_UCHAR);
    Picture pixels(photo.width(), photo.height());
    colors.write(VImage::new_from_memory(pixels.rgb.data(), pixels.rgb.size(), pixels.width, pixels.height,
                                         kColors, VIPS_FORMAT_UCHAR));
    return pixels;
}

Photo photoOf(const Picture& pixels) {
    return viewOf(pixels).copy_memory();
}

Photo withPixels(const Photo& photo, const Picture& pixels) {
    return inPlaceOf(photo, viewOf(pixels));
}

Photo withChange(const Photo& photo, const Picture& before, const Picture& after) {
    VImage change = viewOf(after) - viewOf(before);
    if (isDeep(photo))
        change = change * kDeepSteps;
    return inPlaceOf(photo, (colorsOf(photo) + change).cast(photo.format()));
}

Photo convertedToSrgb(const Photo& photo, const char* fallbackProfile) {
    return photo.icc_transform("srgb", VImage::option()
                                           ->set("embedded", true)
                                           ->set("input_profile", fallbackProfile)
                                           ->set("intent", VIPS_INTENT_RELATIVE)
                                           ->set("depth", isDeep(photo) ? 16 : 8));
}

Photo withProfileOf(const Photo& photo, const Photo& pixels) {
    const Photo result = pixels.copy();
    GValue profile = G_VALUE_INIT;
    if (photo.get_typeof(VIPS_META_ICC_NAME) != 0 &&
        vips_image_get(photo.get_image(), VIPS_META_ICC_NAME, &profile) == 0) {
        vips_image_set(result.get_image(), VIPS_META_ICC_NAME, &profile);
        g_value_unset(&profile);
    }
    return result;
}

void removeThumbnail(Photo& photo) {
    vips_image_remove(photo.get_image(), "jpeg-thumbnail-data");
}

Photo sideBySide(const Photo& left, const Photo& right) {
    const Photo first = isDeep(right) ? left : withPixels(left, pixelsOf(left));
    return first.join(right, VIPS_DIRECTION_HORIZONTAL);
}

} // namespace ze::tool
