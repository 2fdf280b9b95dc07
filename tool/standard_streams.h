// Standard input, output and error when the caller closed one of them, and output that cannot be written.

#pragma once

namespace ze::tool {

/// Keeps the numbers 0 to 2 from files that are opened later: messages would go into them. A stream that was
/// closed stays unusable. Call it before any file is opened.
void reserveStandardStreams();

/// Ends what was printed. Throws `Failure` (`failed`) when not all of it could be written.
void flushStandardOutput();

} // namespace ze::tool
