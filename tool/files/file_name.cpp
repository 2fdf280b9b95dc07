#include "tool/files/file_name.h"

#include "tool/errors.h"

namespace ze::tool {

CZeString libraryFileName(const std::string& path) {
    const std::string file = path.rfind(":/", 0) == 0 ? "./" + path : path;
    CZeString name = CZeString::fromUtf8(file.c_str());
    if (file != name.toUtf8().constData())
        throw Failure(ExitCode::usage, path, "its name is no valid UTF-8");
    return name;
}

} // namespace ze::tool
