// Loading a LUT file of 65 levels, without making its texture, against fread of its bytes.

#include "bench/aligned_block.h"
#include "bench/ratio.h"
#include "effects/lut/lut_file_reader.h"
#include "tests/support/lut_file.h"
#include "tests/support/temp_directory.h"

#include <cstdio>
#include <cstring>
#include <memory>

namespace {

/// Reads with one call into `bytes`. Returns how many came.
size_t readWhole(const std::string& path, uint8_t* bytes, size_t size) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
    return file ? std::fread(bytes, 1, size, file.get()) : 0;
}

size_t g_result;

} // namespace

int main(int argc, char** argv) {
    const TempDirectory directory;
    const std::string path = directory / "65.lut";
    LutFile lut{evenLevels(65)};
    const size_t size = lut.fillWithNoise().bytes().size();
    writeFile(path, lut.bytes());
    const CZeString name = CZeString::fromUtf8(path.c_str());
    const AlignedBlock ready = makeBlock(size);

    const ze::CLutFileReader reader(name);
    if (readWhole(path, ready.get(), size) != size || !reader.isValid() ||
        std::memcmp(reader.colorData(), ready.get() + size - lut.colors.size(), lut.colors.size()) != 0) {
        std::fputs("CLutFileReader and fread do not read the same\n", stderr);
        return 1;
    }
    addComparison("LUT of 65 levels", [name] { g_result = ze::CLutFileReader(name).levelCount(); },
                  {{"fread", [&] { g_result = readWhole(path, ready.get(), size); }}});
    return runComparisons(argc, argv);
}
