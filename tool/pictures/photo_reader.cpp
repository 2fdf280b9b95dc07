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

// The name of a loader, or null. Asking for one that does not exist leaves an error behind, which is no
// answer to a later question.
const char* found(const char* loader) {
    vips_error_clear();
    return loader;
}

const char* sourceLoader(const vips::VSource& source) {
    return found(vips_foreign_find_load_source(source.get_source()));
}

const char* bufferLoader(const std::string& bytes) {
    return found(vips_foreign_find_load_buffer(bytes.data(), bytes.size()));
}

bool isTiff(const std::string& bytes) {
    return bytes.compare(0, 4, "II*\0", 4) == 0 || bytes.compare(0, 4, "MM\0*", 4) == 0;
}

// Some loaders read a file before libvips refuses them.
void refuseBlocked(const char* loader, const std::string& bytes) {
    if (!isBlocked(loader))
        return;
    // A TIFF that lost its end, where its directory is, passes for nothing that libvips itself reads.
    if (isTiff(bytes))
        throw Failure(ExitCode::badInput, "is no valid picture (a TIFF that is damaged or cut short)");
    throw Failure(ExitCode::badInput, "is in a format whose reader libvips does not trust with files of "
                                      "strangers; 'render' and 'sheet' read it with --untrusted");
}

// libvips has three kinds of loaders; few formats have all of them.
void open(const std::string& bytes, EncodedPhoto& photo) {
    photo.source.emplace(vips::VSource::new_from_memory(bytes.data(), bytes.size()));
    if (const char* const loader = sourceLoader(*photo.source)) {
        refuseBlocked(loader, bytes);
        photo.image = VImage::new_from_source(*photo.source, "", loadOptions());
        return;
    }
    if (const char* const loader = bufferLoader(bytes)) {
        refuseBlocked(loader, bytes);
        photo.image = VImage::new_from_buffer(bytes.data(), bytes.size(), "", loadOptions());
        return;
    }
    photo.file.emplace(bytes);
    const std::string path = photo.file->path();
    const char* const loader = found(vips_foreign_find_load(path.c_str()));
    if (!loader)
        throw Failure(ExitCode::badInput, "is no picture in a format that can be read");
    refuseBlocked(loader, bytes);
    photo.image = VImage::new_from_file(path.c_str(), loadOptions());
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

Failure unreadable(const vips::VError& error) {
    const std::string reason = vipsReason(error);
    const auto says = [&](const char* text) { return reason.find(text) != reason.npos; };
    if (says("not supported") || says("out of range"))
        return {ExitCode::badInput, "is of a kind that libvips cannot read (" + reason + ")"};
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

bool isOneOf(VipsInterpretation kind, std::initializer_list<VipsInterpretation> kinds) {
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

bool isGray(VipsInterpretation kind) {
    return isOneOf(kind, {VIPS_INTERPRETATION_B_W, VIPS_INTERPRETATION_GREY16});
}

bool isRgb(VipsInterpretation kind) {
    return isOneOf(kind, {VIPS_INTERPRETATION_sRGB, VIPS_INTERPRETATION_RGB, VIPS_INTERPRETATION_RGB16});
}

VipsInterpretation kindOf(const VImage& image) {
    return vips_image_guess_interpretation(image.get_image());
}

bool hasProfile(const VImage& image) {
    return image.get_typeof(VIPS_META_ICC_NAME) != 0;
}

VImage as(const VImage& image, VipsInterpretation kind) {
    return image.copy(VImage::option()->set("interpretation", kind));
}

// `image` times `scale` in 16 bits.
VImage scaledTo16Bits(const VImage& image, double scale) {
    const bool gray = image.bands() < 3;
    return as((image * scale).rint().cast(VIPS_FORMAT_USHORT),
              gray ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_RGB16);
}

// Samples of 32 bits in a form that the rest knows. Floats from 0 to 1 are numbers of the profile where there
// is one; without one they are linear light.
VImage withKnownSamples(const VImage& image) {
    constexpr double kStepsOf32Bits = 65537; // in one of 16
    const VipsInterpretation kind = kindOf(image);
    const bool isPlain = isGray(kind) || isRgb(kind) || kind == VIPS_INTERPRETATION_scRGB;
    if (image.format() == VIPS_FORMAT_UINT && isPlain)
        return scaledTo16Bits(image, 1 / kStepsOf32Bits);
    if (!isFloating(image) || !isPlain)
        return image;
    if (hasProfile(image))
        return scaledTo16Bits(image, 65535);
    const VImage first = image.bands() < 3 ? image.extract_band(0) : image;
    return as(first.bands() == 1 ? first.bandjoin(first).bandjoin(first) : first, VIPS_INTERPRETATION_scRGB);
}

// What is not RGB has no use for its profile once it is.
VImage withoutProfile(const VImage& image) {
    const VImage result = image.copy();
    vips_image_remove(result.get_image(), VIPS_META_ICC_NAME);
    return result;
}

// RGB or RGBA of 8 or 16 bits.
VImage inRgb(VImage image, ColorProfiles profiles) {
    if (image.get_int("coding") == VIPS_CODING_RAD)
        image = image.rad2float();
    image = withKnownSamples(image);
    const VipsInterpretation kind = kindOf(image);
    if (kind == VIPS_INTERPRETATION_CMYK)
        return convertedToSrgb(image, "cmyk");
    if (hasProfile(image) && (isGray(kind) || (isRgb(kind) && profiles == ColorProfiles::convertedToSrgb)))
        return convertedToSrgb(image);
    const bool deep = image.format() == VIPS_FORMAT_USHORT || kind == VIPS_INTERPRETATION_LABS;
    if (!isRgb(kind))
        image =
            withoutProfile(image.colourspace(deep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB));
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
        throw unreadable(error);
    }
}

Photo readPhoto(const std::string& path, ColorProfiles profiles) {
    return withFileInError(path,
                           [&] { return decodePhoto(path, readWholeInput(path, kMostBytes), profiles); });
}

std::string photoLoaderOf(const std::string& start) {
    startVips();
    const vips::VSource source = vips::VSource::new_from_memory(start.data(), start.size());
    const char* loader = sourceLoader(source);
    if (!loader)
        loader = bufferLoader(start);
    return loader ? loader : "";
}

} // namespace ze::tool
