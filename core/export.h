// The one export macro: marks what libZeBeautyEffect offers to hosts. Everything else is built hidden.

#pragma once

/// Makes a function or class visible outside the library.
#define ZE_EXPORT __attribute__((visibility("default")))
