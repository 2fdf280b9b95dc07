#include "tool/pictures/photo_writer.h"

#include "tool/pictures/vips.h"

#include <algorithm>
#include <string_view>

namespace ze::tool {
namespace {

using vips::VImage;

constexpr double kUsualResolution = 72 / 25.4; // pixels per millimeter, of pictures that name none

constexpr PhotoFormat kFormats[] = {
    // extension, suffix, quality, losslessness, profile
    {".png", ".png", false, true, true},   {".jpg", ".jpg", true, false, true},
    {".jpeg", ".jpg", true, false, true},  {".webp", ".webp", true, true, true},
    {".tif", ".tif", false, true, true},   {".tiff", ".tif", false, true, true},
    {".avif", ".heic", true, false, true}, {".heic", ".heic", true, false, true},
    {".jp2", ".jp2", true, true, false},   {".jxl", ".jxl", true, true, true},
    {".gif", ".gif", false, false, false}, {".ppm", ".ppm", false, true, false},
};

// The operation that saves `format`; null when libvips has none here.
const char* saverOf(const PhotoFormat& format) {
    startVips();
    return vips_foreign_find_save_target(format.suffix);
}

bool isWritable(const PhotoFormat& format) {
    const char* const saver = saverOf(format);
    return saver && !isBlocked(saver);
}

vips::VOption* saverOptions(const Photo& photo, const PhotoFormat& format, const SaveOptions& options) {
    vips::VOption* const result =
        VImage::option()->set("background", whiteOf(photo))->set("strip", options.strip);
    if (std::string_view(format.extension) == ".avif")
        result->set("compression", VIPS_FOREIGN_HEIF_COMPRESSION_AV1);
    if (options.quality)
        result->set("Q", *options.quality);
    if (options.lossless && format.hasQuality)
        result->set("lossless", true);
    return result;
}

// For libvips a picture without a resolution has one pixel per millimeter, which nobody means.
Photo withResolution(const Photo& photo) {
    if (photo.xres() != 1 || photo.yres() != 1)
        return photo;
    return photo.copy(VImage::option()->set("xres", kUsualResolution)->set("yres", kUsualResolution));
}

// Savers do not all strip what they are told to.
Photo withoutFields(const Photo& photo) {
    const Photo result = photo.copy();
    for (const std::string& name : fieldsOf(photo))
        vips_image_remove(result.get_image(), name.c_str());
    return result;
}

// Where the profile cannot go along, the numbers have to change for the colors to stay.
Photo inColorsOf(const PhotoFormat& format, const Photo& photo) {
    if (format.keepsProfile || photo.get_typeof(VIPS_META_ICC_NAME) == 0)
        return photo;
    return convertedToSrgb(photo);
}

uint32_t bigEndianAt(const std::string& bytes, size_t at) {
    uint32_t value = 0;
    for (size_t i = at; i < at + 4; ++i)
        value = value << 8 | static_cast<uint8_t>(bytes[i]);
    return value;
}

// libpng writes the EXIF block at the beginning and again at the end, where it is not allowed.
void dropSecondExif(std::string& png) {
    constexpr size_t kSignature = 8, kChunkOverhead = 12; // length, type and checksum
    bool hasExif = false;
    for (size_t at = kSignature; at + kChunkOverhead <= png.size();) {
        const size_t size = kChunkOverhead + bigEndianAt(png, at);
        const bool isExif = png.compare(at + 4, 4, "eXIf") == 0;
        if (isExif && hasExif)
            png.erase(at, size);
        else
            at += size;
        hasExif = hasExif || isExif;
    }
}

} // namespace

const PhotoFormat* photoFormatOf(const std::string& extension) {
    const auto* const found = std::find_if(std::begin(kFormats), std::end(kFormats),
                                           [&](const PhotoFormat& f) { return f.extension == extension; });
    return found == std::end(kFormats) ? nullptr : found;
}

std::string writableExtensions() {
    std::string names;
    for (const PhotoFormat& format : kFormats)
        if (isWritable(format))
            names += (names.empty() ? "" : ", ") + std::string(format.extension);
    return names;
}

void checkSaveOptions(const PhotoFormat& format, const SaveOptions& options) {
    const std::string name = format.extension;
    const char* const saver = saverOf(format);
    if (!saver)
        throw Failure(ExitCode::usage, "libvips writes no " + name + " on this machine");
    if (isBlocked(saver))
        throw Failure(ExitCode::usage,
                      "libvips does not trust its writer of " + name + "; --untrusted uses it");
    if (options.quality && !format.hasQuality)
        throw Failure(ExitCode::usage, name + " has no --quality");
    if (options.lossless && !format.canBeLossless)
        throw Failure(ExitCode::usage, name + " cannot be --lossless");
}

std::string encodePhoto(const Photo& photo, const PhotoFormat& format, const SaveOptions& options) {
    vips_error_clear(); // Another photo's.
    try {
        const vips::VTarget target = vips::VTarget::new_to_memory();
        const Photo whole = withResolution(inColorsOf(format, options.strip ? withoutFields(photo) : photo));
        whole.write_to_target(format.suffix, target, saverOptions(photo, format, options));
        VipsBlob* blob = nullptr;
        g_object_get(target.get_target(), "blob", &blob, nullptr);
        size_t size = 0;
        const void* const bytes = vips_blob_get(blob, &size);
        std::string result(static_cast<const char*>(bytes), size);
        vips_area_unref(VIPS_AREA(blob));
        if (std::string_view(format.extension) == ".png")
            dropSecondExif(result);
        return result;
    } catch (const vips::VError& error) {
        throw Failure(ExitCode::failed, "cannot be encoded (" + vipsReason(error) + ")");
    }
}

} // namespace ze::tool
