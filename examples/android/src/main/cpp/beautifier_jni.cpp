// The native half of com.example.camera.Beautifier.

#include "camera_frame.h"

#include "host/beautifier.h"
#include "host/library_log.h"

#include <jni.h>

#include <string>
#include <utility>

namespace {

zebeauty::Beautifier& fromHandle(jlong handle) {
    return *reinterpret_cast<zebeauty::Beautifier*>(handle);
}

CameraPlane plane(JNIEnv* env, jobject buffer, jint rowStride, jint pixelStride) {
    return {static_cast<const uint8_t*>(env->GetDirectBufferAddress(buffer)),
            static_cast<ptrdiff_t>(env->GetDirectBufferCapacity(buffer)), rowStride, pixelStride};
}

// As bytes: JNI takes strings in an encoding of its own.
jbyteArray toBytes(JNIEnv* env, const std::string& utf8) {
    const auto size = static_cast<jsize>(utf8.size());
    jbyteArray bytes = env->NewByteArray(size);
    if (bytes)
        env->SetByteArrayRegion(bytes, 0, size, reinterpret_cast<const jbyte*>(utf8.data()));
    return bytes;
}

} // namespace

extern "C" {

JNIEXPORT jlong JNICALL Java_com_example_camera_Beautifier_nativeCreate(JNIEnv*, jclass) {
    // Before Android 11 the log cannot be listened to, and a table that cannot be loaded goes unnoticed.
    const bool isCaught = zebeauty::catchLibraryErrors();
    auto takeError = isCaught ? zebeauty::takeLibraryError : nullptr;
    return reinterpret_cast<jlong>(new zebeauty::Beautifier({}, takeError));
}

JNIEXPORT void JNICALL Java_com_example_camera_Beautifier_nativeDestroy(JNIEnv*, jclass, jlong handle) {
    delete &fromHandle(handle);
}

JNIEXPORT void JNICALL Java_com_example_camera_Beautifier_nativeSet(JNIEnv* env, jclass, jlong handle,
                                                                    jfloat smoothing, jfloat whitening,
                                                                    jbyteArray table, jfloat intensity) {
    zebeauty::Settings settings;
    settings.smoothing = smoothing;
    settings.whitening = whitening;
    settings.table.resize(static_cast<size_t>(env->GetArrayLength(table)));
    env->GetByteArrayRegion(table, 0, static_cast<jsize>(settings.table.size()),
                            reinterpret_cast<jbyte*>(settings.table.data()));
    settings.intensity = intensity;
    fromHandle(handle).set(std::move(settings));
}

// Packs the camera's planes into `nv12`, a direct buffer, and beautifies it in place. Null, or what went
// wrong.
JNIEXPORT jbyteArray JNICALL Java_com_example_camera_Beautifier_nativeProcess(
    JNIEnv* env, jclass, jlong handle, jobject y, jint yRowStride, jobject u, jint uRowStride,
    jint uPixelStride, jobject v, jint vRowStride, jint vPixelStride, jint width, jint height, jobject nv12) {
    auto* const bytes = static_cast<uint8_t*>(env->GetDirectBufferAddress(nv12));
    if (width < 1 || height < 1 || !bytes ||
        env->GetDirectBufferCapacity(nv12) < static_cast<jlong>(nv12Size(width, height)) ||
        !packNv12(plane(env, y, yRowStride, 1), plane(env, u, uRowStride, uPixelStride),
                  plane(env, v, vRowStride, vPixelStride), width, height, bytes))
        return toBytes(env, "the planes do not hold a frame of this size");

    zebeauty::Frame
        frame; // YUV_420_888 carries JFIF, which is BT.601 in full range, as frames are by default.
    frame.planes = {bytes, bytes + static_cast<ptrdiff_t>(width) * height, width, (width + 1) / 2 * 2};
    frame.width = width;
    frame.height = height;
    const auto reason = fromHandle(handle).process(frame);
    return reason ? toBytes(env, *reason) : nullptr;
}
}
