// The native half of com.example.camera.Beautifier.

#include "camera_frame.h"

#include "api/ze_beauty_effect.h"

#include <jni.h>

#include <string>
#include <vector>

namespace {

constexpr int kNV12 = 0;
// What YUV_420_888 carries: JFIF, which is BT.601 in full range.
constexpr int kBT601 = 0, kFullRange = 1;

struct Beautifier {
    ZecRenderCore* core = ZecCreateRenderCore();
    ZecEffect* beauty = ZecCreateEffect(0);
    ZecEffect* lut = ZecCreateEffect(1);
    bool isBeautyActive = false, isLutActive = false;

    /// The active effects alone: with an inactive one beside an active one the library would hand back an
    /// earlier picture. With none active, an inactive one makes it copy the frame.
    std::vector<ZecEffect*> effects() const {
        std::vector<ZecEffect*> active;
        if (isBeautyActive || !isLutActive)
            active.push_back(beauty);
        if (isLutActive)
            active.push_back(lut);
        return active;
    }
};

Beautifier* fromHandle(jlong handle) {
    return reinterpret_cast<Beautifier*>(handle);
}

CameraPlane plane(JNIEnv* env, jobject buffer, jint rowStride, jint pixelStride) {
    return {static_cast<const uint8_t*>(env->GetDirectBufferAddress(buffer)),
            ptrdiff_t(env->GetDirectBufferCapacity(buffer)), rowStride, pixelStride};
}

} // namespace

extern "C" {

JNIEXPORT jlong JNICALL Java_com_example_camera_Beautifier_nativeCreate(JNIEnv*, jclass) {
    return reinterpret_cast<jlong>(new Beautifier);
}

// On the thread that rendered. A core that never rendered cannot be destroyed; it has no GL objects, so that
// a few hundred bytes are what stays.
JNIEXPORT void JNICALL Java_com_example_camera_Beautifier_nativeDestroy(JNIEnv*, jclass, jlong handle) {
    Beautifier* const beautifier = fromHandle(handle);
    ZecDestoryEffect(beautifier->beauty); // effects first, while the core's context is current
    ZecDestoryEffect(beautifier->lut);
    ZecDestroyRenderCore(beautifier->core);
    delete beautifier;
}

JNIEXPORT void JNICALL Java_com_example_camera_Beautifier_nativeSetBeauty(JNIEnv*, jclass, jlong handle,
                                                                          jfloat smoothing,
                                                                          jfloat whitening) {
    Beautifier* const beautifier = fromHandle(handle);
    ZecSetBeautyParams(beautifier->beauty, smoothing, whitening);
    beautifier->isBeautyActive = double{smoothing} > 0.001 || double{whitening} >= 0.001;
}

// The first path stays; later calls set the intensity alone.
JNIEXPORT void JNICALL Java_com_example_camera_Beautifier_nativeSetLut(JNIEnv* env, jclass, jlong handle,
                                                                       jbyteArray path, jfloat intensity) {
    std::string utf8(size_t(env->GetArrayLength(path)), '\0');
    env->GetByteArrayRegion(path, 0, jsize(utf8.size()), reinterpret_cast<jbyte*>(&utf8[0]));
    Beautifier* const beautifier = fromHandle(handle);
    ZecSetLutParams(beautifier->lut, utf8, intensity);
    beautifier->isLutActive = double{intensity} >= 0.001;
}

// Packs the camera's planes into `nv12`, a direct buffer, and beautifies it in place.
JNIEXPORT jboolean JNICALL Java_com_example_camera_Beautifier_nativeRender(
    JNIEnv* env, jclass, jlong handle, jobject y, jint yRowStride, jobject u, jint uRowStride,
    jint uPixelStride, jobject v, jint vRowStride, jint vPixelStride, jint width, jint height, jobject nv12) {
    auto* const bytes = static_cast<uint8_t*>(env->GetDirectBufferAddress(nv12));
    if (width < 1 || height < 1 || !bytes ||
        env->GetDirectBufferCapacity(nv12) < jlong(nv12Size(width, height)) ||
        !packNv12(plane(env, y, yRowStride, 1), plane(env, u, uRowStride, uPixelStride),
                  plane(env, v, vRowStride, vPixelStride), width, height, bytes))
        return JNI_FALSE;
    ZecImage image = {{bytes, bytes + ptrdiff_t{width} * height, nullptr}, {width, (width + 1) / 2 * 2, 0}};
    const Beautifier& beautifier = *fromHandle(handle);
    const bool done = ZecRender(beautifier.core, beautifier.effects(), &image, &image, kNV12, kBT601,
                                kFullRange, width, height, 0);
    return done ? JNI_TRUE : JNI_FALSE;
}
}
