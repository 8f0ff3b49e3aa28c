// What the shared library exports.
#pragma once

/// Marks a class or function of the public headers. All else is hidden in the shared library.
#if defined(__GNUC__) && !defined(_WIN32)
#define BRINDLE_EXPORT __attribute__((visibility("default")))
#else
#define BRINDLE_EXPORT
#endif
