#ifndef LUMO_CONFIG_H
#define LUMO_CONFIG_H

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

#endif
