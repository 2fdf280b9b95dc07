// PNG files of every kind, put together by hand.

#pragma once

#include <cstdint>
#include <string>

#include <zlib.h>

inline std::string bigEndian(uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 0xff);
    return bytes;
}

inline std::string pngChunk(const std::string& typeAndData) {
    const auto length = static_cast<uint32_t>(typeAndData.size());
    const auto* bytes = reinterpret_cast<const Bytef*>(typeAndData.data());
    return bigEndian(length - 4) + typeAndData + bigEndian(static_cast<uint32_t>(crc32(0, bytes, length)));
}

/// `rows` holds the packed rows, each after its filter byte; `extra` whole chunks that go before them.
inline std::string pngBytes(uint32_t width, uint32_t height, int depth, int colourType,
                            const std::string& rows, const std::string& extra = {}) {
    uLongf size = compressBound(rows.size());
    std::string packed(size, '\0');
    compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(rows.data()),
             rows.size());
    const std::string kind = {static_cast<char>(depth), static_cast<char>(colourType), 0, 0, 0};
    return "\x89PNG\r\n\x1a\n" + pngChunk("IHDR" + bigEndian(width) + bigEndian(height) + kind) + extra +
           pngChunk("IDAT" + packed.substr(0, size)) + pngChunk("IEND");
}
