// Any bytes as a compressed block: restore it; what comes of it survives being compressed again.

#include "core/tools/compression.h"
#include "log/log_settings.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ZeSetLogFilter(0);
    if (size > 4096)
        return 0;
    const CZeByteArray bytes = ZeUncompress(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const CZeByteArray packed = ZeCompress(bytes.constData(), bytes.size(), 1);
    if (ZeUncompress(packed.constData(), packed.size()) != bytes)
        std::abort();
    return 0;
}
