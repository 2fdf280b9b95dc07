// The plug-in: its name, its element, and EGL told where there is no display.

#include "gst/beauty_element.h"

namespace {

bool isSet(const char* variable) {
    const char* const value = g_getenv(variable);
    return value && *value;
}

gboolean initialize(GstPlugin* plugin) {
    // EGL looks for an X server otherwise. Where a display is named, EGL is the program's own affair: what
    // draws windows may stand on the platform that EGL takes.
    if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY") && !isSet("EGL_PLATFORM"))
        g_setenv("EGL_PLATFORM", "surfaceless", TRUE);
    return gst_element_register(plugin, "zebeauty", GST_RANK_NONE, ze::gst::beautyElementType());
}

// Not const, which GST_PLUGIN_DEFINE would cast away.
char g_description[] = "Smooths skin, brightens and grades colors in live video";

} // namespace

#define PACKAGE "ZeBeautyEffect"
GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, zebeauty, g_description, initialize, ZE_VERSION,
                  GST_LICENSE_UNKNOWN, PACKAGE, "Unknown package origin")
