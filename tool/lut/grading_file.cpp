#include "tool/lut/grading_file.h"

#include "tool/errors.h"
#include "tool/files/file_name.h"
#include "tool/lut/correction_file.h"
#include "tool/lut/grading_log.h"
#include "tool/lut/grading_reason.h"
#include "tool/lut/memory_file.h"
#include "tool/lut/number_check.h"

#include <OpenColorIO/OpenColorIO.h>

#include <algorithm>
#include <utility>

namespace ze::tool {
namespace {

namespace ocio = OCIO_NAMESPACE;

// The extension by which a reason is chosen: of the name, or of what the text begins like.
std::string extensionFor(const LutInput& input) {
    constexpr std::pair<const char*, const char*> kKeywords[] = {
        {"LUT_1D_SIZE", ".cube"}, {"LUT_3D_SIZE", ".cube"}, {"3DMESH", ".3dl"},
        {"CSPLUT", ".csp"},       {"SPILUT", ".spi3d"},     {"<ProcessList", ".clf"}};
    const std::string extension = extensionOf(input.name);
    if (!extension.empty())
        return extension;
    for (const auto& [keyword, known] : kKeywords)
        if (input.bytes.find(keyword) != input.bytes.npos)
            return known;
    return "";
}

struct Reading {
    ocio::ConstProcessorRcPtr processor;
    std::string reader;
};

// The transform in `text`. Of several color corrections, one of them.
Reading readText(const LutInput& input, const std::string& text) {
    const MemoryFile file(text);
    const GradingLog log;
    ocio::ClearAllCaches(); // of an earlier file with this name
    const ocio::FileTransformRcPtr transform = ocio::FileTransform::Create();
    transform->setSrc(file.path().c_str());
    transform->setCCCId("0");
    transform->setInterpolation(ocio::INTERP_BEST); // tetrahedral in three dimensions
    try {
        ocio::ConstProcessorRcPtr processor = ocio::Config::CreateRaw()->getProcessor(
            ocio::Context::Create(), transform, ocio::TRANSFORM_DIR_FORWARD);
        return {std::move(processor), log.readerName()};
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        // Readers of text would quote what is none.
        const bool isText = text.find('\0') == text.npos;
        const std::string reasons = isText ? reasonsIn(log.text(), extensionFor(input), file.path()) : "";
        throw Failure(ExitCode::badInput, input.name,
                      reasons.empty() ? "is neither a look-up table that can be read nor a picture of one"
                                      : "is no valid look-up table (" + reasons + ")");
    }
}

// A file with a single correction means that one, whatever the id: other files of a chain may have several.
const Correction& chosen(const std::vector<Correction>& corrections, const LutInput& input,
                         const std::string& id) {
    const auto found = id.empty() || corrections.size() == 1
                           ? corrections.begin()
                           : std::find_if(corrections.begin(), corrections.end(),
                                          [&](const Correction& c) { return c.name == id; });
    if (found == corrections.end())
        throw unknownCorrection(input.name, id, namesOf(corrections));
    if (id.empty() && corrections.size() > 1)
        printError(input.name + ": took the color correction '" + found->name + "', the first of " +
                   std::to_string(corrections.size()) + "; --id names another");
    return *found;
}

std::string stepText(const ocio::ConstTransformRcPtr& step) {
    if (const auto cube = std::dynamic_pointer_cast<const ocio::Lut3DTransform>(step))
        return "3D table of " + std::to_string(cube->getGridSize()) + " levels";
    if (const auto curve = std::dynamic_pointer_cast<const ocio::Lut1DTransform>(step))
        return "1D table of " + std::to_string(curve->getLength()) + " entries";
    switch (step->getTransformType()) {
    case ocio::TRANSFORM_TYPE_CDL:
        return "color correction";
    case ocio::TRANSFORM_TYPE_MATRIX:
        return "matrix";
    case ocio::TRANSFORM_TYPE_RANGE:
        return "range";
    case ocio::TRANSFORM_TYPE_EXPONENT:
    case ocio::TRANSFORM_TYPE_EXPONENT_WITH_LINEAR:
        return "exponent";
    case ocio::TRANSFORM_TYPE_LOG:
    case ocio::TRANSFORM_TYPE_LOG_AFFINE:
    case ocio::TRANSFORM_TYPE_LOG_CAMERA:
        return "logarithm";
    default:
        return "other";
    }
}

void takeDescription(const ocio::FormatMetadata& metadata, ColorTransform& transform) {
    const std::string id = metadata.getID();
    if (transform.id.empty() && id.rfind('$', 0) != 0) // a hash that OpenColorIO made
        transform.id = id;
    for (int i = 0; i < metadata.getNumChildrenElements(); ++i) {
        const ocio::FormatMetadata& child = metadata.getChildElement(i);
        const std::string name = child.getElementName();
        if (transform.description.empty() && name.find("Description") != name.npos)
            transform.description = child.getElementValue();
    }
}

void describe(const ocio::ConstProcessorRcPtr& processor, ColorTransform& transform) {
    takeDescription(processor->getFormatMetadata(), transform);
    const ocio::GroupTransformRcPtr group = processor->createGroupTransform();
    for (int i = 0; i < group->getNumTransforms(); ++i) {
        const ocio::ConstTransformRcPtr step = group->getTransform(i);
        transform.steps.push_back(stepText(step));
        if (const auto correction = std::dynamic_pointer_cast<const ocio::CDLTransform>(step))
            takeDescription(correction->getFormatMetadata(), transform);
    }
}

void checkNumbers(const LutInput& input, const std::string& text) {
    const std::string reason = text.find('\0') == text.npos ? findBadNumber(text) : "";
    if (!reason.empty())
        throw Failure(ExitCode::badInput, input.name, "is no valid look-up table (" + reason + ")");
}

} // namespace

ColorTransform readGradingFile(const LutInput& input, const std::string& id) {
    const std::string text = plainText(input);
    checkNumbers(input, text);
    const Reading whole = readText(input, text);
    ocio::ConstProcessorRcPtr processor = whole.processor;

    ColorTransform transform;
    transform.name = input.name;
    transform.format = whole.reader;
    const std::vector<Correction> corrections = correctionsIn(text);
    if (!corrections.empty())
        processor = readText(input, onlyCorrection(text, chosen(corrections, input, id))).processor;
    transform.corrections = namesOf(corrections);
    describe(processor, transform);
    const ocio::ConstCPUProcessorRcPtr cpu = processor->getOptimizedCPUProcessor(ocio::OPTIMIZATION_LOSSLESS);
    transform.apply = [cpu](std::vector<Color>& colors) {
        ocio::PackedImageDesc image(colors.data(), static_cast<long>(colors.size()), 1,
                                    ocio::CHANNEL_ORDERING_RGB);
        cpu->apply(image);
    };
    return transform;
}

} // namespace ze::tool
