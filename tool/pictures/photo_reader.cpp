#include "tool/pictures/photo_reader.h"

#include "tool/errors.h"
#include "tool/files/input_file.h"
#include "tool/files/memory_file.h"
#include "tool/pictures/vips.h"

#include <algorithm>
#include <cstring>

namespace ze::tool {
namespace {

using vips::VImage;

// What a run needs at its peak: the planes, the library's textures (in main memory where the driver draws in
// software), pictures of 8 bits, and copies of the photo in its own depth, in the encoder for example. 41 to
// 68 bytes a pixel were measured with llvmpipe, from JPEG to JPEG and from RGBA of 16 bits to WebP.
constexpr int64_t kBytesPerPixel = 48;
constexpr int64_t kCopies = 4;

// No photo has more, and fewer than libvips would take.
constexpr size_t kMostBytes = size_t{4} << 30;

vips::VOption* loadOptions() {
    return VImage::option()->set("fail_on", VIPS_FAIL_ON_ERROR)->set("access", VIPS_ACCESS_SEQUENTIAL);
}

// A picture whose pixels are still to be decoded, and what they are decoded from.
struct EncodedPhoto {
    std::optional<vips::VSource> source;
    std::optional<MemoryFile> file; // for loaders that read nothing else
    VImage image;
};

// Asking for a loader that does not exist leaves an error behind, which is no answer to a later question.
bool hasSourceLoader(const vips::VSource& source) {
    const bool found = vips_foreign_find_load_source(source.get_source()) != nullptr;
    vips_error_clear();
    return found;
}

bool hasBufferLoader(const std::string& bytes) {
    const bool found = vips_foreign_find_load_buffer(bytes.data(), bytes.size()) != nullptr;
    vips_error_clear();
    return found;
}

// libvips has three kinds of loaders; few formats have all of them.
void open(const std::string& bytes, EncodedPhoto& photo) {
    photo.source.emplace(vips::VSource::new_from_memory(bytes.data(), bytes.size()));
    if (hasSourceLoader(*photo.source)) {
        photo.image = VImage::new_from_source(*photo.source, "", loadOptions());
    } else if (hasBufferLoader(bytes)) {
        photo.image = VImage::new_from_buffer(bytes.data(), bytes.size(), "", loadOptions());
    } else {
        photo.file.emplace(bytes);
        photo.image = VImage::new_from_file(photo.file->path().c_str(), loadOptions());
    }
}

// The reader of HEIC and AVIF lends the color profile, which goes with the image that it made. A copy stays.
VImage withOwnBlobs(const VImage& image) {
    VImage result = image.copy();
    for (const std::string& name : fieldsOf(image)) {
        if (image.get_typeof(name.c_str()) != VIPS_TYPE_BLOB)
            continue;
        size_t size = 0;
        const void* const bytes = image.get_blob(name.c_str(), &size);
        vips_image_set_blob_copy(result.get_image(), name.c_str(), bytes, size);
    }
    return result;
}

bool isTiff(const std::string& bytes) {
    return bytes.compare(0, 4, "II*\0", 4) == 0 || bytes.compare(0, 4, "MM\0*", 4) == 0;
}

Failure unreadable(const std::string& bytes, const vips::VError& error) {
    // A TIFF that lost its end, where its directory is, passes for nothing that libvips itself reads.
    if (isAboutBlockedFormat(error) && isTiff(bytes))
        return {ExitCode::badInput, "is no valid picture (a TIFF that is damaged or cut short)"};
    const std::string reason = vipsReason(error);
    const auto says = [&](const char* text) { return reason.find(text) != reason.npos; };
    if (isAboutBlockedFormat(error))
        return {ExitCode::badInput, "is in a format whose reader libvips does not trust with files of "
                                    "strangers; --untrusted reads it"};
    if (says("not in a known format") || says("not a known file format"))
        return {ExitCode::badInput, "is no picture in a format that can be read"};
    if (says("Unsupported codec"))
        return {ExitCode::badInput, "needs a decoder that the libheif of this machine lacks "
                                    "(libde265 for HEIC, dav1d or libaom for AVIF)"};
    return {ExitCode::badInput,
            "is no valid picture (" + (reason.empty() ? "damaged or cut short" : reason) + ")"};
}

void checkMemory(const VImage& image, int64_t memory) {
    const int64_t channels = std::clamp(image.bands(), 3, 4);
    const int64_t depth = image.format() == VIPS_FORMAT_UCHAR ? 1 : 2;
    const int64_t needed =
        int64_t{image.width()} * image.height() * (kBytesPerPixel + kCopies * channels * depth);
    if (needed > memory)
        throw Failure(ExitCode::failed, std::to_string(image.width()) + "x" + std::to_string(image.height()) +
                                            " pixels need " + std::to_string(needed >> 20) +
                                            " MiB of memory, of which there are " +
                                            std::to_string(memory >> 20));
}

std::string loaderOf(const VImage& image) {
    return image.get_typeof(VIPS_META_LOADER) == 0 ? "" : image.get_string(VIPS_META_LOADER);
}

void tellOfMorePages(const std::string& name, const VImage& image) {
    const bool countsResolutions = loaderOf(image).rfind("jp2k", 0) == 0;
    const int pages = vips_image_get_n_pages(image.get_image());
    if (pages > 1 && !countsResolutions)
        printError("warning: " + name + ": took the first of " + std::to_string(pages) + " pictures in it");
}

bool isFloating(const VImage& image) {
    return vips_band_format_isfloat(image.format()) != 0 || vips_band_format_iscomplex(image.format()) != 0;
}

VImage inSrgb(const VImage& image, const char* fallbackProfile) {
    const bool deep = image.format() == VIPS_FORMAT_USHORT;
    return image.icc_transform("srgb", VImage::option()
                                           ->set("embedded", true)
                                           ->set("input_profile", fallbackProfile)
                                           ->set("intent", VIPS_INTENT_RELATIVE)
                                           ->set("depth", deep ? 16 : 8));
}

// RGB or RGBA of 8 or 16 bits.
VImage inRgb(VImage image, ColorProfiles profiles) {
    if (image.get_int("coding") == VIPS_CODING_RAD)
        image = image.rad2float();
    const bool hasProfile = image.get_typeof(VIPS_META_ICC_NAME) != 0;
    const VipsInterpretation kind = vips_image_guess_interpretation(image.get_image());
    const bool isGray = kind == VIPS_INTERPRETATION_B_W || kind == VIPS_INTERPRETATION_GREY16;
    const bool isRgb = kind == VIPS_INTERPRETATION_sRGB || kind == VIPS_INTERPRETATION_RGB ||
                       kind == VIPS_INTERPRETATION_RGB16;
    if (kind == VIPS_INTERPRETATION_CMYK)
        return inSrgb(image, "cmyk");
    if (hasProfile && !isFloating(image) && (isGray || (isRgb && profiles == ColorProfiles::convertedToSrgb)))
        return inSrgb(image, "srgb");
    if (!isRgb)
        image = image.colourspace(image.format() == VIPS_FORMAT_USHORT ? VIPS_INTERPRETATION_RGB16
                                                                       : VIPS_INTERPRETATION_sRGB);
    if (image.bands() > 4)
        image = image.extract_band(0, VImage::option()->set("n", 4));
    return image.format() == VIPS_FORMAT_USHORT ? image : image.cast(VIPS_FORMAT_UCHAR);
}

// ImageMagick puts the rows of a TGA in order and leaves the mark that asks for it.
bool isUprightDespiteItsMark(const VImage& image) {
    return image.get_typeof("magick-format") != 0 &&
           std::strcmp(image.get_string("magick-format"), "TGA") == 0;
}

VImage upright(const VImage& image) {
    const bool isTurned = image.get_typeof(VIPS_META_ORIENTATION) != 0 &&
                          image.get_int(VIPS_META_ORIENTATION) != 1 && !isUprightDespiteItsMark(image);
    VImage result = isTurned ? image.autorot().copy_memory() : image.copy();
    vips_autorot_remove_angle(result.get_image());
    if (isTurned)
        removeThumbnail(result);
    return result;
}

} // namespace

Photo decodePhoto(const std::string& name, const std::string& bytes, ColorProfiles profiles, int64_t memory) {
    startVips();
    EncodedPhoto photo;
    try {
        open(bytes, photo);
        checkMemory(photo.image, memory);
        tellOfMorePages(name, photo.image);
        return upright(inRgb(withOwnBlobs(photo.image), profiles).copy_memory());
    } catch (const vips::VError& error) {
        throw unreadable(bytes, error);
    }
}

Photo readPhoto(const std::string& path, ColorProfiles profiles) {
    return withFileInError(path,
                           [&] { return decodePhoto(path, readWholeInput(path, kMostBytes), profiles); });
}

bool looksLikePhoto(const std::string& start) {
    startVips();
    return hasSourceLoader(vips::VSource::new_from_memory(start.data(), start.size())) ||
           hasBufferLoader(start);
}

} // namespace ze::tool
