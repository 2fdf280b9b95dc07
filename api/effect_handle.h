// The effect handle behind the exported entry points.

#pragma once

#include "api/ze_beauty_effect.h"

#include <cstdint>

namespace ze {

constexpr int32_t kBeautyType = 0;
constexpr int32_t kLutType = 1;

} // namespace ze

/// Owns its effect object: a ze::BeautyEffect for type 0, a ze::CLutEffect for type 1, none for any other
/// type.
struct ZecEffect {
    int32_t type;
    void* effect;
};
