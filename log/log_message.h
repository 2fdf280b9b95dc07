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
    bool isComplete = true; ///< There was memory for every piece; without one the text might mislead.
};

/// Adds a piece; a null one stands for one that there was no memory to make.
void append(LogMessage& message, const CZeString& piece) noexcept;

/// Gives up one owner. The last one emits the message, if it is enabled and complete, and frees the record.
void release(LogMessage* message) noexcept;

} // namespace ze
