// Keeping the library loaded.

#pragma once

namespace ze {

/// Keeps the library that contains this in the process until that ends: the end of any thread, made here or
/// not, is going to call it. False when that cannot be done. Any thread may call it, any number of times.
bool keepLibraryLoaded();

} // namespace ze
