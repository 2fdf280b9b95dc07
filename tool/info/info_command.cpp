#include "tool/commands.h"
#include "tool/info/gl_info.h"

#include <iostream>

namespace ze::tool {

void addInfoCommand(CLI::App& program) {
    CLI::App* command = program.add_subcommand("info", "Show what EGL and OpenGL ES this machine has");
    command->callback([] {
        const GlInfo info = queryGl();
        std::cout << "EGL vendor: " << info.eglVendor << "\nEGL version: " << info.eglVersion
                  << "\nGL vendor: " << info.vendor << "\nGL renderer: " << info.renderer
                  << "\nGL version: " << info.version << "\nGL_MAX_TEXTURE_SIZE: " << info.maxTextureSize
                  << '\n';
    });
}

} // namespace ze::tool
