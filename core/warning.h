// The core library's way to report a refusal. The log implements it, so that core/ needs nothing of log/.

#pragma once

class CZeString;

namespace ze {

/// Emits a warning, formatted as printf does and cut at 1023 bytes. Any thread may call it.
void coreWarning(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The same with `text` as it is, whatever its length.
void coreWarning(const CZeString& text);

} // namespace ze
