#pragma once

/// Refuses a compiler whose host could not work with the module. The module is built with GCC and, for Windows, with
/// the C library msvcrt.dll. A build of another kind says so to its hosts with BIOS_CONFIG_MODULE_MSVC or
/// BIOS_CONFIG_MODULE_UCRT; the CMake package defines what applies.

#if !defined(__GNUC__) && !defined(BIOS_CONFIG_MODULE_MSVC)
#error "The module is built with GCC and shares C++ objects with its host: see 'Build requirement' in HostGuide.md"
#endif

// Any header of the library tells which C library it is for.
#include <cstddef>

#if defined(__GNUC__) && defined(_UCRT) && !defined(BIOS_CONFIG_MODULE_UCRT)
#error "The module uses msvcrt.dll and this host ucrtbase.dll, another heap: 'Build requirement' in HostGuide.md"
#elif defined(BIOS_CONFIG_MODULE_UCRT) && !defined(_UCRT)
#error "The module uses ucrtbase.dll and this host msvcrt.dll, another heap: 'Build requirement' in HostGuide.md"
#endif
