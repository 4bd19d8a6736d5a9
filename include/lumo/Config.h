/// @file
/// lumo's configuration header: the export mark LUMO_API, the root layer's compiler tests
/// under lumo's names, and the priorities that fix the order of the library's start-up.
#ifndef LUMO_CONFIG_H
#define LUMO_CONFIG_H

#include <vela/Config.h>

// The library's version, major.minor.patch; the build reads its project version from
// these lines, so the headers, the shared library's name and the packages agree.
/// The major version: the shared library's name (liblumo.so.N) changes with it.
#define LUMO_VERSION_MAJOR 0
/// The minor version: grows with additions that keep existing programs working.
#define LUMO_VERSION_MINOR 1
/// The patch version: fixes only.
#define LUMO_VERSION_PATCH 0
/// Spells a version number as text (after expanding it), for LUMO_VERSION.
#define LUMO_VERSION_TEXT(n) LUMO_VERSION_TEXT_OF(n)
/// Spells its argument as text, unexpanded; LUMO_VERSION_TEXT's second step.
#define LUMO_VERSION_TEXT_OF(n) #n
/// The same version as text, e.g. "0.1.0".
#define LUMO_VERSION                                                                               \
    LUMO_VERSION_TEXT(LUMO_VERSION_MAJOR)                                                          \
    "." LUMO_VERSION_TEXT(LUMO_VERSION_MINOR) "." LUMO_VERSION_TEXT(LUMO_VERSION_PATCH)

/// @def LUMO_API
/// Every public class and free function carries LUMO_API; everything else in the
/// shared library stays hidden (on Windows: dllexport while building, dllimport in users).
#if defined(_WIN32)
#if defined(LUMO_BUILDING_LIBRARY)
#define LUMO_API __declspec(dllexport)
#else
#define LUMO_API __declspec(dllimport)
#endif
#else
#define LUMO_API __attribute__((visibility("default")))
#endif

// The compiler, byte-order and SIMD tests are the root layer's, under lumo's names.
/// VELA_PRINTF_FORMAT under lumo's name.
#define LUMO_PRINTF_FORMAT(formatIndex, firstIndex) VELA_PRINTF_FORMAT(formatIndex, firstIndex)
/// VELA_NOINLINE under lumo's name.
#define LUMO_NOINLINE VELA_NOINLINE
/// VELA_COLD under lumo's name.
#define LUMO_COLD VELA_COLD
/// VELA_LITTLE_ENDIAN under lumo's name.
#define LUMO_LITTLE_ENDIAN VELA_LITTLE_ENDIAN
/// VELA_HAVE_SSE2 under lumo's name.
#define LUMO_HAVE_SSE2 VELA_HAVE_SSE2
/// VELA_INIT_PRIORITY under lumo's name.
#define LUMO_INIT_PRIORITY(priority) VELA_INIT_PRIORITY(priority)

/// The start-up order of the library's static objects, stated here rather than left
/// to the link order: the class records first (each registers itself), then the
/// encoder registry, then the module's attach work; every other static object after
/// them. Unloading goes backwards. Applications' class records take the first step
/// too, which orders them only within their own binary.
///@{
#define LUMO_CLASS_RECORD_PRIORITY 200
#define LUMO_REGISTRY_PRIORITY 300
#define LUMO_MODULE_PRIORITY 400
///@}

#endif
