#include "tool/pictures/vips.h"

#include <clocale>

namespace ze::tool {
namespace {

bool initialize() {
    if (VIPS_INIT("zebeauty") != 0)
        throw Failure(ExitCode::failed, "libvips cannot be started: " + std::string(vips_error_buffer()));
    std::setlocale(LC_ALL, "C"); // as it was: libvips takes the user's, with a decimal comma perhaps
    g_log_set_default_handler([](const gchar*, GLogLevelFlags, const gchar*, gpointer) {}, nullptr);
    vips_cache_set_max(0);
    vips_block_untrusted_set(TRUE);
    return true;
}

} // namespace

void startVips() {
    [[maybe_unused]] static const bool isStarted = initialize();
}

void allowUntrustedFormats() {
    startVips();
    vips_block_untrusted_set(FALSE);
}

std::vector<std::string> fieldsOf(const vips::VImage& image) {
    gchar** const names = vips_image_get_fields(image.get_image());
    std::vector<std::string> result;
    for (gchar** name = names; *name; ++name)
        result.emplace_back(*name);
    g_strfreev(names);
    return result;
}

bool isBlocked(const char* operation) {
    const auto* const type =
        reinterpret_cast<const VipsOperationClass*>(vips_class_find("VipsOperation", operation));
    return (type->flags & VIPS_OPERATION_BLOCKED) != 0;
}

std::string vipsReason(const vips::VError& error) {
    std::string text = error.what();
    text.erase(text.find_last_not_of(" \n") + 1);
    for (size_t at = text.find('\n'); at != text.npos; at = text.find('\n', at))
        text.replace(at, 1, "; ");
    return text;
}

} // namespace ze::tool
