#ifndef LUMO_CONFIG_H
#define LUMO_CONFIG_H

#include <vela/Config.h>

// Every public class and free function carries LUMO_API; everything else in the
// shared library stays hidden.
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
#define LUMO_PRINTF_FORMAT(formatIndex, firstIndex) VELA_PRINTF_FORMAT(formatIndex, firstIndex)
#define LUMO_NOINLINE VELA_NOINLINE
#define LUMO_COLD VELA_COLD
#define LUMO_LITTLE_ENDIAN VELA_LITTLE_ENDIAN
#define LUMO_HAVE_SSE2 VELA_HAVE_SSE2

#endif
