// The search behind every member that looks for text.

#pragma once

#include "core/tools/text_view.h"

namespace ze {

/// The position of the first `needle` at or behind `from`, −1 when there is none. A negative `from` counts
/// from the end. An empty needle is found everywhere up to and including the end.
int findForward(Utf16View haystack, int from, Utf16View needle, Ze::CaseSensitivity cs);

/// The position of the last `needle` that starts at or before `from`, −1 when there is none. A negative
/// `from` counts from the end.
int findBackward(Utf16View haystack, int from, Utf16View needle, Ze::CaseSensitivity cs);

} // namespace ze
