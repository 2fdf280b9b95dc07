// What ends the program early, and the exit codes it then returns.

#pragma once

#include <cstddef>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

namespace ze::tool {

enum class ExitCode {
    done = 0,
    failed = 1,   ///< Processing or writing failed.
    usage = 2,    ///< The command line asks for something that cannot be done.
    badInput = 3, ///< The input cannot be read or is no valid picture.
    noGl = 4,     ///< There is no EGL or no OpenGL ES.
};

/// Ends the program with `code()`. `what()` is "FILE: reason", or the reason alone where no file is
/// concerned.
class Failure : public std::runtime_error {
public:
    Failure(ExitCode code, const std::string& reason) : std::runtime_error(reason), m_code(code) {}
    Failure(ExitCode code, const std::string& file, const std::string& reason)
        : std::runtime_error(file + ": " + reason), m_code(code), m_namesFile(true) {}

    ExitCode code() const { return m_code; }
    bool namesFile() const { return m_namesFile; }

private:
    ExitCode m_code;
    bool m_namesFile = false; ///< `what()` begins with a file.
};

/// Returns `work()`. A failure in it that names no file yet, lack of memory included, is rethrown as a
/// `Failure` that names `file`.
template <class Work>
auto withFileInError(const std::string& file, Work work) {
    try {
        return work();
    } catch (const Failure& failure) {
        if (failure.namesFile())
            throw;
        throw Failure(failure.code(), file, failure.what());
    } catch (const std::bad_alloc&) {
        throw Failure(ExitCode::failed, file, "not enough memory");
    }
}

/// `text` on one line and safe for a terminal: line ends and tabs become spaces; other control characters, C1
/// included, and what is not UTF-8 become question marks.
std::string printable(std::string_view text);

/// `text`, or its first `longest` bytes at most and "...", cut between two characters.
std::string shortened(std::string text, size_t longest);

/// Writes "zebeauty: `text`" to standard error as one line, printable whatever `text` holds.
void printError(std::string_view text);

/// The system's words for `errno`.
std::string systemReason();

} // namespace ze::tool
