/// @file
/// The root layer's configuration: its export mark VELA_API and the one place for the
/// compiler, byte-order and SIMD tests and the static-initialization priority macro.
#ifndef VELA_CONFIG_H
#define VELA_CONFIG_H

/// @def VELA_API
/// The root layer's export mark. It is built into the same shared library as lumo but
/// stands below it, so it has its own header (on Windows: dllexport while building,
/// dllimport in users).
#if defined(_WIN32)
#if defined(LUMO_BUILDING_LIBRARY)
#define VELA_API __declspec(dllexport)
#else
#define VELA_API __declspec(dllimport)
#endif
#else
#define VELA_API __attribute__((visibility("default")))
#endif

// The compiler, byte-order and SIMD tests of the whole library live here once.

/// @def VELA_PRINTF_FORMAT
/// Lets the compiler check a printf-style format (argument positions count `this`);
/// empty for compilers without the attribute.
/// @def VELA_NOINLINE
/// Keeps a function out of line.
/// @def VELA_COLD
/// Keeps a rarely taken function (a failure path) out of line and out of the hot code.
#if defined(__GNUC__)
#define VELA_PRINTF_FORMAT(formatIndex, firstIndex)                                                \
    __attribute__((format(printf, formatIndex, firstIndex)))
#define VELA_NOINLINE __attribute__((noinline))
#define VELA_COLD __attribute__((noinline, cold))
#else
#define VELA_PRINTF_FORMAT(formatIndex, firstIndex)
#define VELA_NOINLINE
#define VELA_COLD
#endif

/// @def VELA_INIT_PRIORITY
/// Orders a static object's construction: objects with a priority are made before all
/// others, lowest number first, and destroyed after them, in reverse.
#if defined(__GNUC__)
#define VELA_INIT_PRIORITY(priority) __attribute__((init_priority(priority)))
#else
#define VELA_INIT_PRIORITY(priority)
#endif

/// @def VELA_LITTLE_ENDIAN
/// 1 on little-endian machines, 0 on big-endian ones.
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
#define VELA_LITTLE_ENDIAN 0
#else
#define VELA_LITTLE_ENDIAN 1
#endif

/// @def VELA_HAVE_SSE2
/// 1 when the compiler may use SSE2 instructions, else 0.
#if defined(__SSE2__)
#define VELA_HAVE_SSE2 1
#else
#define VELA_HAVE_SSE2 0
#endif

#endif
