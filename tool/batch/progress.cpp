#include "tool/batch/progress.h"

#include "tool/clock_text.h"
#include "tool/errors.h"
#include "tool/status_line.h"

#include <filesystem>

#include <unistd.h>

namespace ze::tool {
namespace {

constexpr size_t kLongestName = 40; // so that the line fits terminals

} // namespace

Progress::Progress(size_t count)
    : m_isShown(isatty(STDERR_FILENO) == 1), m_count(count), m_start(std::chrono::steady_clock::now()) {}

Progress::~Progress() {
    clearStatus();
}

void Progress::advance(const std::string& name) {
    ++m_done;
    if (!m_isShown)
        return;
    const std::string shownName = printable(shortened(std::filesystem::path(name).filename(), kLongestName));
    const auto elapsed = std::chrono::steady_clock::now() - m_start;
    const auto left = elapsed / m_done * (m_count - m_done);
    showStatus(shownName + "  " + std::to_string(m_done) + " of " + std::to_string(m_count) + "  " +
               clockText(std::chrono::ceil<std::chrono::seconds>(left)) + " left");
}

} // namespace ze::tool
