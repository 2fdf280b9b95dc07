// Runs zebeauty as its users do.

#pragma once

#include "tests/support/temp_directory.h"
#include "tool/files/file_name.h"
#include "tool/pictures/photo_reader.h"
#include "tool/pictures/photo_writer.h"

#include <gmock/gmock.h>

#include <set>

#include <sys/wait.h>

/// Keeps EGL from the program: the first is for Mesa, the second for ANGLE.
constexpr char kNoGl[] = "__EGL_VENDOR_LIBRARY_FILENAMES=/dev/null VK_ICD_FILENAMES=/dev/null";

/// A directory in which the program runs, and what it says.
class Program : public testing::Test {
protected:
    void write(const std::string& name, const std::string& bytes) {
        std::ofstream(m_directory / name, std::ios::binary) << bytes;
    }

    void write(const std::string& name, const ze::tool::Picture& picture) {
        using namespace ze::tool;
        write(name, encodePhoto(photoOf(picture), *photoFormatOf(extensionOf(name))));
    }

    // Runs the program in the directory, with a shell's quoting, and returns its exit code.
    int run(const std::string& arguments, const std::string& environment = "") {
        const std::string command = "cd '" + m_directory.path() + "' && " + environment + " '" ZEBEAUTY "' " +
                                    arguments + " >'" + (m_streams / "out") + "' 2>'" + (m_streams / "err") +
                                    "'";
        const int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /// ANGLE takes no platform from EGL_PLATFORM, and has words of its own on standard error.
    bool isOnAngle() { return run("info") == 0 && outputText().find("ANGLE") != std::string::npos; }

    std::string errorText() const { return contentOf(m_streams / "err"); }
    std::string outputText() const { return contentOf(m_streams / "out"); }
    ze::tool::Picture read(const std::string& name) const {
        return ze::tool::pixelsOf(ze::tool::readPhoto(m_directory / name));
    }

    std::set<std::string> fileNames() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_directory.path()))
            names.insert(entry.path().filename());
        return names;
    }

    TempDirectory m_directory;
    TempDirectory m_streams;
};
