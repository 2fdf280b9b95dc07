// Any bytes as a LUT file: read it and work out what the effect makes of it.

#include "effects/lut/lut_file_reader.h"
#include "effects/lut/lut_tables.h"
#include "log/log_settings.h"

#include <cstdlib>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ZeSetLogFilter(0);
    const int file = memfd_create("lut", MFD_CLOEXEC);
    if (file < 0 || write(file, data, size) != static_cast<ssize_t>(size))
        std::abort();
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    const ze::CLutFileReader reader(CZeString::fromUtf8(path.c_str()));
    close(file);
    if (!reader.isValid())
        return 0;

    const std::span<const float> levels(reader.levelValues(), reader.levelCount());
    ze::LutCoordinateMap map{};
    ze::fillCoordinateMap(levels, map);
    if (reader.version() != 1 || levels.size() > 65 || (ze::hasUniformLevels(levels) && levels.size() < 2))
        std::abort();
    if (reader.isThreeDimensional())
        ze::lutTexels(reader.colorData(), reader.levelCount());
    return 0;
}
