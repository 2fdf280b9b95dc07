#include "api/effect_handle.h"

#include "effects/beauty/beauty_effect.h"
#include "effects/lut/lut_effect.h"

namespace ze {
namespace {

/// What is asked of the effect objects of one type.
struct EffectClass {
    int32_t type;
    void* (*make)();
    void (*destroy)(void* effect);
    bool (*isActive)(const void* effect);
    void (*render)(void* effect, GLuint source, FrameSize size, GLuint target);
};

template <class Effect>
constexpr EffectClass effectClass(int32_t type) {
    return {
        .type = type,
        .make = []() -> void* { return new Effect; },
        .destroy = [](void* effect) { delete static_cast<Effect*>(effect); },
        .isActive = [](const void* effect) { return static_cast<const Effect*>(effect)->isActive(); },
        .render = [](void* effect, GLuint source, FrameSize size,
                     GLuint target) { static_cast<Effect*>(effect)->render(source, size, target); },
    };
}

/// Every effect type there is.
constexpr EffectClass kEffectClasses[] = {
    effectClass<BeautyEffect>(kBeautyType),
    effectClass<CLutEffect>(kLutType),
};

const EffectClass* findClass(int32_t type) {
    for (const EffectClass& candidate : kEffectClasses)
        if (candidate.type == type)
            return &candidate;
    return nullptr;
}

/// The class of the handle's effect; null when it has none, or none that is known here.
const EffectClass* classOf(const ZecEffect& handle) {
    return handle.effect ? findClass(handle.type) : nullptr;
}

template <class Effect>
Effect* effectOf(ZecEffect* handle, int32_t type) {
    return handle && handle->type == type ? static_cast<Effect*>(handle->effect) : nullptr;
}

} // namespace

void* makeEffect(int32_t type) {
    const EffectClass* known = findClass(type);
    return known ? known->make() : nullptr;
}

bool isActive(const ZecEffect& handle) {
    const EffectClass* known = classOf(handle);
    return known && known->isActive(handle.effect);
}

void renderEffect(const ZecEffect& handle, GLuint source, FrameSize size, GLuint target) {
    const EffectClass* known = classOf(handle);
    if (known)
        known->render(handle.effect, source, size, target);
}

void destroyEffect(ZecEffect& handle) {
    const EffectClass* known = classOf(handle);
    if (known)
        known->destroy(handle.effect);
    handle.effect = nullptr;
}

BeautyEffect* beautyEffectOf(ZecEffect* handle) {
    return effectOf<BeautyEffect>(handle, kBeautyType);
}

CLutEffect* lutEffectOf(ZecEffect* handle) {
    return effectOf<CLutEffect>(handle, kLutType);
}

} // namespace ze
