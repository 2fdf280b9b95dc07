// Texts for the errors of system calls.

#pragma once

class CZeString;

namespace ze {

/// The text for the errno value `code`, without white space around it: empty for 0, a fixed text for the
/// commonest file errors, the system's own text for any other value. Any thread may call it. A text that
/// there is no memory for gives way to "Cannot allocate memory", which needs none.
CZeString errorText(int code);

/// The same for the text of an error that is not one of the system: `text`, which is ASCII.
CZeString errorText(const char* text);

/// The same, where -1 stands for the current value of errno.
CZeString lastErrorText(int code = -1);

} // namespace ze
