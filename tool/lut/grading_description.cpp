#include "tool/lut/grading_description.h"

#include "tool/errors.h"

namespace ze::tool {
namespace {

namespace ocio = OCIO_NAMESPACE;

std::string stepText(const ocio::ConstTransformRcPtr& step) {
    if (const auto cube = std::dynamic_pointer_cast<const ocio::Lut3DTransform>(step)) {
        if (cube->getGridSize() < 2) // what is left of a damaged .3dl, perhaps
            throw Failure(ExitCode::badInput, "is no valid look-up table (it has a single entry)");
        return "3D table of " + std::to_string(cube->getGridSize()) + " levels";
    }
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

} // namespace

void describe(const OCIO_NAMESPACE::ConstProcessorRcPtr& processor, ColorTransform& transform) {
    takeDescription(processor->getFormatMetadata(), transform);
    const ocio::GroupTransformRcPtr group = processor->createGroupTransform();
    for (int i = 0; i < group->getNumTransforms(); ++i) {
        const ocio::ConstTransformRcPtr step = group->getTransform(i);
        transform.steps.push_back(stepText(step));
        if (const auto correction = std::dynamic_pointer_cast<const ocio::CDLTransform>(step))
            takeDescription(correction->getFormatMetadata(), transform);
    }
}

} // namespace ze::tool
