#include "gst/beauty_element.h"

#include "gst/video_frame.h"
#include "host/library_log.h"

#include <mutex>

#include <gst/video/gstvideofilter.h>

namespace ze::gst {
namespace {

enum Property : guint { kSmooth = 1, kWhiten, kLut, kIntensity };

/// What an element has beside its base class.
struct Parts {
    std::mutex settingsMutex; // Guards `settings`.
    zebeauty::Settings settings;
    zebeauty::Beautifier beautifier{{}, zebeauty::takeLibraryError};
    // Of the streaming thread.
    zebeauty::Frame kind;               // As the caps have it, without size and planes.
    std::optional<std::string> refusal; // Why such frames cannot be beautified.
};

struct BeautyElement {
    GstVideoFilter base;
    Parts* parts;
};

struct BeautyElementClass {
    GstVideoFilterClass base;
};

GObjectClass* g_parentClass;

Parts& partsOf(void* element) {
    return *static_cast<BeautyElement*>(element)->parts;
}

void initialize(GTypeInstance* instance, gpointer /*elementClass*/) {
    reinterpret_cast<BeautyElement*>(instance)->parts = new Parts;
}

void finalize(GObject* object) {
    delete &partsOf(object);
    g_parentClass->finalize(object);
}

void setProperty(GObject* object, guint id, const GValue* value, GParamSpec* description) {
    Parts& parts = partsOf(object);
    const std::lock_guard lock(parts.settingsMutex);
    switch (id) {
    case kSmooth:
        parts.settings.smoothing = g_value_get_float(value);
        break;
    case kWhiten:
        parts.settings.whitening = g_value_get_float(value);
        break;
    case kLut:
        parts.settings.table = g_value_get_string(value) ? g_value_get_string(value) : "";
        break;
    case kIntensity:
        parts.settings.intensity = g_value_get_float(value);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, description);
    }
}

void getProperty(GObject* object, guint id, GValue* value, GParamSpec* description) {
    Parts& parts = partsOf(object);
    const std::lock_guard lock(parts.settingsMutex);
    switch (id) {
    case kSmooth:
        g_value_set_float(value, parts.settings.smoothing);
        break;
    case kWhiten:
        g_value_set_float(value, parts.settings.whitening);
        break;
    case kLut:
        g_value_set_string(value, parts.settings.table.empty() ? nullptr : parts.settings.table.c_str());
        break;
    case kIntensity:
        g_value_set_float(value, parts.settings.intensity);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, description);
    }
}

// A frame may slip in behind, where something pushes while the state changes: that one has the core made
// anew.
gboolean stop(GstBaseTransform* base) {
    partsOf(base).beautifier.reset();
    return TRUE;
}

gboolean setInfo(GstVideoFilter* filter, GstCaps* /*caps*/, GstVideoInfo* info, GstCaps* /*outputCaps*/,
                 GstVideoInfo* /*outputInfo*/) {
    Parts& parts = partsOf(filter);
    parts.refusal = describe(*info, parts.kind);
    return TRUE; // Frames that cannot be beautified may still pass through.
}

// Whether a frame passes through is settled here, once for all of its way through the base class.
void beforeTransform(GstBaseTransform* base, GstBuffer* buffer) {
    if (base->segment.format == GST_FORMAT_TIME) {
        const GstClockTime time =
            gst_segment_to_stream_time(&base->segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer));
        if (GST_CLOCK_TIME_IS_VALID(time))
            gst_object_sync_values(GST_OBJECT(base), time);
    }
    Parts& parts = partsOf(base);
    const std::lock_guard lock(parts.settingsMutex);
    parts.beautifier.set(parts.settings);
    gst_base_transform_set_passthrough(base, !parts.settings.isActive());
}

// In place of that of GstVideoFilter, which passes frames on that cannot be mapped.
GstFlowReturn transformInPlace(GstBaseTransform* base, GstBuffer* buffer) {
    Parts& parts = partsOf(base);
    if (parts.refusal) {
        GST_ELEMENT_ERROR(base, STREAM, FORMAT, ("%s", parts.refusal->c_str()), (nullptr));
        return GST_FLOW_ERROR;
    }
    const MappedFrame mapped(reinterpret_cast<GstVideoFilter*>(base)->in_info, *buffer);
    if (!mapped) {
        GST_ELEMENT_ERROR(base, RESOURCE, WRITE, ("the memory of a frame is too small or not to be had"),
                          (nullptr));
        return GST_FLOW_ERROR;
    }
    [[maybe_unused]] static const bool s_areErrorsCaught = zebeauty::catchLibraryErrors(false);
    if (const auto reason = parts.beautifier.process(mapped.get(parts.kind))) {
        const bool isAboutTable = reason->find("lut") != reason->npos;
        GST_ELEMENT_ERROR(base, LIBRARY, FAILED, ("%s", reason->c_str()),
                          ("%s", isAboutTable
                                     ? "\"zebeauty lut bake\" makes what lut takes of .cube and other files"
                                     : ""));
        return GST_FLOW_ERROR;
    }
    return GST_FLOW_OK;
}

constexpr int kFlags = G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_PLAYING;

void installAmount(GObjectClass* objectClass, Property id, const char* name, const char* blurb,
                   float preset) {
    constexpr auto kAmountFlags = static_cast<GParamFlags>(kFlags | GST_PARAM_CONTROLLABLE);
    g_object_class_install_property(objectClass, id,
                                    g_param_spec_float(name, name, blurb, 0, 1, preset, kAmountFlags));
}

void initializeClass(gpointer elementClass, gpointer /*data*/) {
    g_parentClass = static_cast<GObjectClass*>(g_type_class_peek_parent(elementClass));

    auto* const object = static_cast<GObjectClass*>(elementClass);
    object->finalize = finalize;
    object->set_property = setProperty;
    object->get_property = getProperty;
    installAmount(object, kSmooth, "smooth", "How much to smooth skin, from not at all to fully", 0);
    installAmount(object, kWhiten, "whiten", "How much to brighten the whole frame", 0);
    g_object_class_install_property(
        object, kLut,
        g_param_spec_string("lut", "lut",
                            "The .lut file to grade colors with, after smooth and whiten; \"zebeauty lut "
                            "bake\" makes one of .cube and other files. Read once: name a changed file anew",
                            nullptr, static_cast<GParamFlags>(kFlags)));
    installAmount(object, kIntensity, "intensity", "How much of the colors of lut to mix in", 1);

    auto* const element = static_cast<GstElementClass*>(elementClass);
    gst_element_class_set_static_metadata(element, "Skin beautifier", "Filter/Effect/Video",
                                          "Smooths skin, brightens and grades colors in NV12 and NV21 frames "
                                          "of BT.601 or BT.709, with OpenGL ES. "
                                          "Leaves frames alone unless smooth, whiten or lut say otherwise",
                                          "ZeBeautyEffect");
    for (const GstPadDirection direction : {GST_PAD_SINK, GST_PAD_SRC}) {
        GstCaps* const caps = gst_caps_from_string(GST_VIDEO_CAPS_MAKE("{ NV12, NV21 }"));
        gst_element_class_add_pad_template(element,
                                           gst_pad_template_new(direction == GST_PAD_SINK ? "sink" : "src",
                                                                direction, GST_PAD_ALWAYS, caps));
        gst_caps_unref(caps);
    }

    auto* const transform = static_cast<GstBaseTransformClass*>(elementClass);
    transform->stop = stop;
    transform->before_transform = beforeTransform;
    transform->transform_ip = transformInPlace;
    transform->transform_ip_on_passthrough = FALSE;
    auto* const filter = static_cast<GstVideoFilterClass*>(elementClass);
    filter->set_info = setInfo;
}

} // namespace

GType beautyElementType() {
    static const GType s_type =
        g_type_register_static_simple(GST_TYPE_VIDEO_FILTER, "ZeBeauty", sizeof(BeautyElementClass),
                                      initializeClass, sizeof(BeautyElement), initialize, GTypeFlags{});
    return s_type;
}

} // namespace ze::gst
