#include "tool/lut/lut_chain.h"

#include "tool/errors.h"
#include "tool/lut/correction_file.h"
#include "tool/lut/grading_file.h"
#include "tool/lut/lut_file.h"
#include "tool/pictures/photo_reader.h"

#include <algorithm>
#include <utility>

namespace ze::tool {
namespace {

ColorTransform transformOf(const std::string& name, std::string format, ColorTable table) {
    ColorTransform transform;
    transform.name = name;
    transform.format = std::move(format);
    transform.table = table;
    transform.apply = [table = std::move(table)](std::vector<Color>& colors) {
        for (Color& color : colors)
            color = lookUp(table, color);
    };
    return transform;
}

ColorTransform pictureTransform(const LutInput& input, PictureLayout layout) {
    const Picture picture = pixelsOf(decodePhoto(input.name, input.bytes));
    const PictureLayout kind = layoutOf(picture, layout);
    return transformOf(input.name, kind == PictureLayout::hald ? "Hald CLUT" : "lookup picture",
                       tableFromPicture(picture, kind));
}

// Only what is no text: libvips takes numbers in lines for a matrix.
bool isPicture(const std::string& bytes) {
    return bytes.find('\0') != bytes.npos && !photoLoaderOf(bytes).empty();
}

void checkLevels(const ColorTransform& transform) {
    if (transform.table && !areRising(transform.table->levels))
        throw Failure(ExitCode::badInput, transform.name, "its levels do not rise");
}

} // namespace

ColorTransform readTransform(const std::string& path, const ReadOptions& options) {
    const LutInput input = readLutInput(path);
    return withFileInError(path, [&] {
        if (isLutFile(input.bytes))
            return transformOf(path, kLutFileFormat, readLutFile(input));
        if (isPicture(input.bytes))
            return pictureTransform(input, options.layout);
        return readGradingFile(input, options.id);
    });
}

LutChain readChain(const std::vector<std::string>& paths, const ReadOptions& options) {
    LutChain chain;
    for (const std::string& path : paths) {
        chain.push_back(readTransform(path, options));
        checkLevels(chain.back());
    }
    checkId(chain, options.id);
    return chain;
}

void checkId(const LutChain& chain, const std::string& id) {
    std::vector<std::string> names;
    for (const ColorTransform& transform : chain)
        names.insert(names.end(), transform.corrections.begin(), transform.corrections.end());
    if (!id.empty() && std::find(names.begin(), names.end(), id) == names.end())
        throw unknownCorrection(namesOf(chain), id, names);
}

void applyChain(const LutChain& chain, std::vector<Color>& colors) {
    for (const ColorTransform& transform : chain)
        transform.apply(colors);
}

std::string namesOf(const LutChain& chain) {
    std::string names;
    for (const ColorTransform& transform : chain)
        names += (names.empty() ? "" : ", ") + transform.name;
    return names;
}

} // namespace ze::tool
