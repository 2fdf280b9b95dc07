// Compression of byte blocks.

#pragma once

#include "core/export.h"
#include "core/tools/byte_array.h"

/// Compresses `length` bytes. The result is their number in four bytes, the most significant first, and a
/// zlib stream; four zero bytes alone for no bytes. `level` is one of zlib's, from 0 (stored) over 1 (fast)
/// to 9 (small); −1 and any other value stand for zlib's default.
///
/// A null pointer, a negative length and a lack of memory, which includes a result that a byte array cannot
/// hold, are logged as a warning and give an empty array. Any thread may call it.
ZE_EXPORT CZeByteArray ZeCompress(const char* data, int length, int level = -1);

/// Returns the bytes that `ZeCompress` made `data`, of `length` bytes, from. The stored number need not be
/// right: it may be too high, and too low for as long as the result fits a byte array.
///
/// A null pointer, corrupted data and a lack of memory are logged as a warning and give an empty array, as
/// does the form of an empty block, without a warning. Any thread may call it.
ZE_EXPORT CZeByteArray ZeUncompress(const char* data, int length);
