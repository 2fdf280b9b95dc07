#include "core/tools/compression.h"

#include "core/tools/byte_array_limit.h"
#include "core/warning.h"

#include <algorithm>
#include <cstdint>

#include <zlib.h>

namespace {

constexpr int kPrefixSize = 4;

void writePrefix(char* out, uint32_t length) {
    for (int i = 0; i < kPrefixSize; ++i)
        out[i] = static_cast<char>(length >> (24 - 8 * i) & 0xFF);
}

uint32_t readPrefix(const char* data) {
    uint32_t length = 0;
    for (int i = 0; i < kPrefixSize; ++i)
        length = length << 8 | static_cast<unsigned char>(data[i]);
    return length;
}

/// False when there is no memory for so many bytes, or too many of them.
bool resize(CZeByteArray& bytes, int64_t size) {
    if (size > ze::kMaxByteArraySize)
        return false;
    bytes.resize(static_cast<int>(size));
    return bytes.size() == size;
}

/// A corrupted block gives an empty array.
CZeByteArray corrupted() {
    ze::coreWarning("ZeUncompress: Input data is corrupted");
    return {};
}

} // namespace

CZeByteArray ZeCompress(const char* data, int length, int level) {
    if (length == 0)
        return CZeByteArray(kPrefixSize, '\0');
    if (!data) {
        ze::coreWarning("ZeCompress: Data is null");
        return {};
    }
    if (length < 0) {
        ze::coreWarning("ZeCompress: Invalid length: %d", length);
        return {};
    }
    if (level < -1 || level > 9)
        level = -1;

    CZeByteArray out;
    uLong size = 0;
    int result = Z_BUF_ERROR;
    // Where the bound is more than an array can hold, the compressed bytes may still fit the longest one.
    int64_t bound =
        std::min(static_cast<int64_t>(length) + length / 100 + 13, ze::kMaxByteArraySize - kPrefixSize);
    for (; result == Z_BUF_ERROR && resize(out, bound + kPrefixSize); bound *= 2) {
        size = static_cast<uLong>(bound);
        result = compress2(reinterpret_cast<Bytef*>(out.data()) + kPrefixSize, &size,
                           reinterpret_cast<const Bytef*>(data), static_cast<uLong>(length), level);
    }
    if (result != Z_OK) {
        ze::coreWarning("ZeCompress: Z_MEM_ERROR: Not enough memory");
        return {};
    }
    out.resize(static_cast<int>(size) + kPrefixSize);
    writePrefix(out.data(), static_cast<uint32_t>(length));
    return out;
}

CZeByteArray ZeUncompress(const char* data, int length) {
    if (!data) {
        ze::coreWarning("ZeUncompress: Data is null");
        return {};
    }
    if (length <= kPrefixSize) {
        const bool isEmptyBlock = length == kPrefixSize && readPrefix(data) == 0;
        return isEmptyBlock ? CZeByteArray("") : corrupted();
    }

    CZeByteArray out;
    // Memory that is only promised is not touched, so a false prefix costs none.
    for (int64_t room = std::max<int64_t>(readPrefix(data), 1); resize(out, room); room *= 2) {
        auto size = static_cast<uLong>(room);
        const int result = uncompress(reinterpret_cast<Bytef*>(out.data()), &size,
                                      reinterpret_cast<const Bytef*>(data) + kPrefixSize,
                                      static_cast<uLong>(length - kPrefixSize));
        switch (result) {
        case Z_OK:
            out.resize(static_cast<int>(size));
            return out;
        case Z_MEM_ERROR:
            ze::coreWarning("ZeUncompress: Z_MEM_ERROR: Not enough memory");
            return {};
        case Z_DATA_ERROR:
            ze::coreWarning("ZeUncompress: Z_DATA_ERROR: Input data is corrupted");
            return {};
        default: // Z_BUF_ERROR
            break;
        }
    }
    return corrupted();
}
