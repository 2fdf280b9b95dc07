// The record behind a log stream.

#pragma once

#include "core/tools/ze_string.h"

#include <cstdint>

namespace ze {

/// One message in the making, shared by the copies of one stream. Used by one thread, so the count is plain.
struct LogMessage {
    std::uint32_t refCount = 1;
    std::uint32_t level = 0;
    std::int32_t line = 0;
    const char* fileName = nullptr;
    const char* functionName = nullptr;
    bool alwaysToFile = false;
    CZeString text = {};
    bool enabled = true;
};

/// Gives up one owner. The last one emits the message, if it is enabled, and frees the record.
void release(LogMessage* message);

} // namespace ze
