// The one export macro: marks what libZeBeautyEffect offers to hosts. Everything else is built hidden.

#pragma once

#define ZE_EXPORT __attribute__((visibility("default")))
