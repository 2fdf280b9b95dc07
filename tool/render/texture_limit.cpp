#include "tool/render/texture_limit.h"

#include "tool/errors.h"
#include "tool/info/gl_info.h"

namespace ze::tool {

void checkTextureSize(int width, int height, const char* unit) {
    static const int limit = queryGl().maxTextureSize;
    if (width > limit || height > limit)
        throw Failure(ExitCode::failed, std::to_string(width) + "x" + std::to_string(height) + " " + unit +
                                            " are too many for the GPU, whose limit is " +
                                            std::to_string(limit) + " in each direction");
}

} // namespace ze::tool
