// Reading a file in small pieces through CZeFile, against fread.

#include "bench/ratio.h"
#include "core/io/file.h"
#include "tests/support/temp_directory.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr size_t kFileSize = 100'000'000;
constexpr int64_t kPieceSize = 64;

/// Something that depends on every piece.
uint64_t mix(uint64_t sum, const char* piece) {
    uint64_t word = 0;
    std::memcpy(&word, piece, sizeof word);
    return sum * 31 + word;
}

bool writeFile(const std::string& path) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wb"), std::fclose);
    for (uint64_t word = 0; file && word < kFileSize / sizeof word; ++word) {
        const uint64_t scrambled = word * 0x9E3779B97F4A7C15;
        if (std::fwrite(&scrambled, sizeof scrambled, 1, file.get()) != 1)
            return false;
    }
    return file != nullptr;
}

uint64_t readWithLibrary(const std::string& path) {
    CZeFile file(CZeString::fromLocal8Bit(path.c_str()));
    uint64_t sum = 0;
    if (!file.open(Ze::ReadOnly))
        return 0;
    char piece[kPieceSize];
    while (file.read(piece, kPieceSize) == kPieceSize)
        sum = mix(sum, piece);
    return sum;
}

/// With a buffer of `bufferSize` bytes; 0 for the one that the stream comes with.
uint64_t readWithStream(const std::string& path, size_t bufferSize) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!file)
        return 0;
    if (bufferSize != 0)
        std::setvbuf(file.get(), nullptr, _IOFBF, bufferSize);
    uint64_t sum = 0;
    char piece[kPieceSize];
    while (std::fread(piece, 1, kPieceSize, file.get()) == kPieceSize)
        sum = mix(sum, piece);
    return sum;
}

uint64_t g_sum;

} // namespace

int main(int argc, char** argv) {
    const TempDirectory directory;
    const std::string path = directory / "pieces";
    if (!writeFile(path) || readWithLibrary(path) != readWithStream(path, 0) || readWithLibrary(path) == 0) {
        std::fputs("CZeFile and fread do not read the same\n", stderr);
        return 1;
    }
    addComparison("100 MB in 64 bytes", [path] { g_sum = readWithLibrary(path); },
                  {{"fread", [path] { g_sum = readWithStream(path, 0); }},
                   {"fread, 16 KB", [path] { g_sum = readWithStream(path, 16384); }}});
    return runComparisons(argc, argv);
}
