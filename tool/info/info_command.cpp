#include "tool/commands.h"
#include "tool/info/gl_info.h"
#include "tool/pictures/ffmpeg.h"

#include <iostream>
#include <memory>

#include <OpenColorIO/OpenColorIO.h>
#include <nlohmann/json.hpp>
#include <vips/vips.h>

namespace ze::tool {
namespace {

void printText(const GlInfo& info) {
    std::cout << "EGL vendor: " << info.eglVendor << "\nEGL version: " << info.eglVersion
              << "\nGL vendor: " << info.vendor << "\nGL renderer: " << info.renderer
              << "\nGL version: " << info.version << "\nGL_MAX_TEXTURE_SIZE: " << info.maxTextureSize << '\n';
}

void printJson(const GlInfo& info) {
    using Json = nlohmann::ordered_json;
    const Json object = {{"version", ZE_VERSION},
                         {"eglVendor", info.eglVendor},
                         {"eglVersion", info.eglVersion},
                         {"glVendor", info.vendor},
                         {"glRenderer", info.renderer},
                         {"glVersion", info.version},
                         {"maxTextureSize", info.maxTextureSize},
                         {"libraries",
                          {{"libvips", vips_version_string()},
                           {"FFmpeg", av_version_info()},
                           {"OpenColorIO", OCIO_NAMESPACE::GetVersion()}}}};
    constexpr int kOneLine = -1;
    std::cout << object.dump(kOneLine, ' ', false, Json::error_handler_t::replace) << '\n';
}

} // namespace

void addInfoCommand(CLI::App& program) {
    CLI::App* command = program.add_subcommand("info", "Show what EGL and OpenGL ES this machine has");
    const auto json = std::make_shared<bool>(false);
    command->add_flag("--json", *json,
                      "Print one JSON object, with the versions of zebeauty and its libraries");
    command->callback([json] {
        const GlInfo info = queryGl();
        if (*json)
            printJson(info);
        else
            printText(info);
    });
}

} // namespace ze::tool
