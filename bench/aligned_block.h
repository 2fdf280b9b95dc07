// Memory to measure on.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>

struct FreeBlock {
    void operator()(uint8_t* block) const { std::free(block); }
};
using AlignedBlock = std::unique_ptr<uint8_t[], FreeBlock>;

/// A block aligned to 64 bytes, as the staging buffer is. Every page has been touched; the bytes follow a
/// formula with a long period.
inline AlignedBlock makeBlock(size_t size) {
    void* memory = nullptr;
    if (posix_memalign(&memory, 64, size) != 0)
        throw std::bad_alloc();
    AlignedBlock block(static_cast<uint8_t*>(memory));
    for (size_t i = 0; i < size; ++i)
        block[i] = static_cast<uint8_t>(i * 2654435761u >> 13);
    return block;
}
