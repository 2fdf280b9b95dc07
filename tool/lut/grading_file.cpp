#include "tool/lut/grading_file.h"

#include "tool/errors.h"
#include "tool/files/file_name.h"
#include "tool/files/memory_file.h"
#include "tool/lut/correction_file.h"
#include "tool/lut/grading_description.h"
#include "tool/lut/grading_log.h"
#include "tool/lut/grading_reason.h"
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
