#include "tests/support/failing_memory.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <new>

bool FailingMemory::run(int n, const std::function<void()>& work) {
    untilFailure = n;
    hasFailed = false;
    work();
    untilFailure = 0;
    return hasFailed;
}

bool FailingMemory::failsNow() {
    ++attempts;
    if (untilFailure == 0 || --untilFailure > 0)
        return false;
    untilFailure = failsOn ? 1 : 0;
    hasFailed = true;
    return true;
}

namespace {

bool failsNew() {
    return t_memory.includesNew && t_memory.exempt == 0 && t_memory.failsNow();
}

} // namespace

extern "C" {
void* __real_malloc(size_t size);
void* __wrap_malloc(size_t size) {
    void* const block = t_memory.failsNow() ? nullptr : __real_malloc(size);
    t_memory.blocks += block != nullptr;
    return block;
}
void* __real_realloc(void* block, size_t size);
void* __wrap_realloc(void* block, size_t size) {
    return t_memory.failsNow() ? nullptr : __real_realloc(block, size);
}
int __real_posix_memalign(void** block, size_t alignment, size_t size);
int __wrap_posix_memalign(void** block, size_t alignment, size_t size) {
    t_memory.alignment = alignment;
    t_memory.size = size;
    if (t_memory.failsNow())
        return ENOMEM;
    const int result = __real_posix_memalign(block, alignment, size);
    if (result == 0)
        std::memset(*block, 0xAA, size); // which nobody may count on
    return result;
}
void __real_free(void* block);
void __wrap_free(void* block) {
    t_memory.blocks -= block != nullptr;
    __real_free(block);
}
void* __real__Znwm(size_t size);
void* __wrap__Znwm(size_t size) {
    return failsNew() ? throw std::bad_alloc() : __real__Znwm(size);
}
void* __real__ZnwmRKSt9nothrow_t(size_t size, const std::nothrow_t& tag);
void* __wrap__ZnwmRKSt9nothrow_t(size_t size, const std::nothrow_t& tag) {
    return failsNew() ? nullptr : __real__ZnwmRKSt9nothrow_t(size, tag);
}
void* __real__ZnamRKSt9nothrow_t(size_t size, const std::nothrow_t& tag);
void* __wrap__ZnamRKSt9nothrow_t(size_t size, const std::nothrow_t& tag) {
    return failsNew() ? nullptr : __real__ZnamRKSt9nothrow_t(size, tag);
}
}
