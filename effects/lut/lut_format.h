// The layout of LUT files, which docs/lut.md describes: for the library's reader and for whoever writes them.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ze::lut_format {

inline constexpr std::string_view kSignature = ".QX-LUT ";
inline constexpr uint32_t kVersion = 1;
inline constexpr uint32_t kMaxLevelCount = 65;

/// Where the fields of the header start. All of them are little-endian numbers of 32 bits, but for the offset
/// of the levels, which has 64. Other bytes of the header are 0 and not read.
inline constexpr size_t kVersionAt = 8;
inline constexpr size_t kLevelCountAt = 12;
inline constexpr size_t kReservedAt = 16;
inline constexpr size_t kDimensionFlagAt = 20;
inline constexpr size_t kLevelsOffsetAt = 32;
inline constexpr size_t kHeaderSize = 48;

} // namespace ze::lut_format
