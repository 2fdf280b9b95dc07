#include "tool/lut/grading_export.h"

#include "tool/lut/grading_log.h"

#include <OpenColorIO/OpenColorIO.h>

#include <sstream>

namespace ze::tool {
namespace {

namespace ocio = OCIO_NAMESPACE;

ocio::TransformRcPtr cubeOf(const EvenTable& table) {
    const size_t n = table.levelCount;
    const ocio::Lut3DTransformRcPtr cube = ocio::Lut3DTransform::Create(n);
    for (size_t r = 0; r < n; ++r)
        for (size_t g = 0; g < n; ++g)
            for (size_t b = 0; b < n; ++b) {
                const Color& color = table.entry(r, g, b);
                cube->setValue(r, g, b, color[0], color[1], color[2]);
            }
    return cube;
}

ocio::TransformRcPtr curveOf(const EvenTable& table) {
    const ocio::Lut1DTransformRcPtr curve = ocio::Lut1DTransform::Create(table.levelCount, false);
    for (size_t i = 0; i < table.levelCount; ++i)
        curve->setValue(i, table.colors[i][0], table.colors[i][1], table.colors[i][2]);
    return curve;
}

ocio::ConfigRcPtr configWith(const ocio::TransformRcPtr& fromInputToGraded) {
    const ocio::ConfigRcPtr config = ocio::Config::CreateRaw()->createEditableCopy();
    const ocio::ColorSpaceRcPtr input = ocio::ColorSpace::Create();
    input->setName("input");
    config->addColorSpace(input);
    const ocio::ColorSpaceRcPtr graded = ocio::ColorSpace::Create();
    graded->setName("graded");
    graded->setTransform(fromInputToGraded, ocio::COLORSPACE_DIR_FROM_REFERENCE);
    config->addColorSpace(graded);
    return config;
}

} // namespace

std::string clfText(const EvenTable& table) {
    const GradingLog unread;
    const ocio::GroupTransformRcPtr group = ocio::GroupTransform::Create();
    group->appendTransform(table.isThreeDimensional ? cubeOf(table) : curveOf(table));
    std::ostringstream text;
    group->write(ocio::Config::CreateRaw(), "Academy/ASC Common LUT Format", text);
    return text.str();
}

std::string threeDlText(const EvenTable& table) {
    const GradingLog unread;
    const ocio::BakerRcPtr baker = ocio::Baker::Create();
    baker->setConfig(configWith(cubeOf(table)));
    baker->setInputSpace("input");
    baker->setTargetSpace("graded");
    baker->setFormat("flame");
    baker->setCubeSize(static_cast<int>(table.levelCount));
    std::ostringstream text;
    baker->bake(text);
    return text.str();
}

} // namespace ze::tool
