#include "core/threads/library_pin.h"

#include <atomic>

#include <dlfcn.h>
#include <sys/auxv.h>

namespace ze {
namespace {

constinit std::atomic<bool> g_isKept{false};

} // namespace

bool keepLibraryLoaded() {
    if (g_isKept)
        return true;
    // A reference of its own: Android minds RTLD_NODELETE only when a library is first loaded. No lock is
    // held, since others may wait for it in the constructors of a library, and dlopen for those.
    Dl_info own, program;
    if (dladdr(reinterpret_cast<const void*>(&keepLibraryLoaded), &own) == 0)
        return false;
    const auto headers = reinterpret_cast<const void*>(getauxval(AT_PHDR));
    const bool isInProgram = dladdr(headers, &program) != 0 && own.dli_fbase == program.dli_fbase;
    if (!isInProgram && !dlopen(own.dli_fname, RTLD_NOW | RTLD_NOLOAD))
        return false;
    g_isKept = true;
    return true;
}

} // namespace ze
