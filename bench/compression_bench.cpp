// Compressing and restoring, each into an array of its own, against zlib's calls into a buffer that is ready.

#include "bench/ratio.h"
#include "core/tools/compression.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <vector>

#include <zlib.h>

namespace {

/// Lines that resemble each other, as in a log.
std::string makeText(size_t size) {
    std::string text;
    for (unsigned i = 1; text.size() < size; i = i * 1103515245 + 12345)
        text += "frame " + std::to_string(i >> 12) + " took " + std::to_string(i >> 26) + " ms, texture ok\n";
    text.resize(size);
    return text;
}

const Bytef* bytesOf(const std::string& text) {
    return reinterpret_cast<const Bytef*>(text.data());
}

uLong compressWithZlib(const std::string& text, std::vector<Bytef>& out) {
    uLong size = out.size();
    return compress2(out.data(), &size, bytesOf(text), text.size(), -1) == Z_OK ? size : 0;
}

uLong restoreWithZlib(const std::string& stream, std::vector<Bytef>& out) {
    uLong size = out.size();
    return uncompress(out.data(), &size, bytesOf(stream), stream.size()) == Z_OK ? size : 0;
}

} // namespace

int main(int argc, char** argv) {
    constexpr size_t kSizes[] = {1 << 12, 1 << 16, 1 << 20};
    for (const size_t size : kSizes) {
        const std::string text = makeText(size);
        std::vector<Bytef> room(compressBound(size));
        const uLong packedSize = compressWithZlib(text, room);
        const std::string stream(room.begin(), room.begin() + static_cast<ptrdiff_t>(packedSize));
        const CZeByteArray block = ZeCompress(text.data(), static_cast<int>(size));
        const CZeByteArray restored = ZeUncompress(block.constData(), block.size());
        if (std::string(block.begin() + 4, block.end()) != stream ||
            std::string(restored.begin(), restored.end()) != text || restoreWithZlib(stream, room) != size) {
            std::fputs("ZeCompress and zlib do not make the same\n", stderr);
            return 1;
        }
        const std::string suffix = "/" + std::to_string(size >> 10) + " KB";
        addComparison(
            "ZeCompress" + suffix,
            [text] {
                benchmark::DoNotOptimize(ZeCompress(text.data(), static_cast<int>(text.size())).constData());
            },
            {{"zlib", [text, room]() mutable { benchmark::DoNotOptimize(compressWithZlib(text, room)); }}});
        addComparison(
            "ZeUncompress" + suffix,
            [block] { benchmark::DoNotOptimize(ZeUncompress(block.constData(), block.size()).constData()); },
            {{"zlib",
              [stream, room]() mutable { benchmark::DoNotOptimize(restoreWithZlib(stream, room)); }}});
    }
    return runComparisons(argc, argv);
}
