// What went wrong with a file.

#pragma once

namespace Ze {

/// The error codes of files.
enum FileError : int {
    FileErrNone = 0,
    FileErrRead = 1,
    FileErrWrite = 2,    ///< Also when bytes that were accepted earlier could not be written.
    FileErrResource = 4, ///< The process ran out of file descriptors.
    FileErrOpen = 5,     ///< Any other failure to open, and opening a directory.
    FileErrRemove = 9,
    FileErrRename = 10,
    FileErrPosition = 11,
    FileErrMap = 12,
};

} // namespace Ze
