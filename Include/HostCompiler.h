#pragma once

/// Refuses a compiler whose host could not work with the module. The module is built with GCC and, for Windows, with
/// the C library msvcrt.dll. A build of another kind says so to its hosts with BIOS_CONFIG_MODULE_MSVC or
/// BIOS_CONFIG_MODULE_UCRT; the CMake package defines what applies.

#if !defined(__GNUC__) && !defined(BIOS_CONFIG_MODULE_MSVC)
#error "The module is built with GCC and exchanges objects of its C++ library with the host, so the host's compiler must be GCC or one that is binary compatible with it: see 'Build requirement' in HostGuide.md."
#endif

// Any header of the library tells which C library it is for.
#include <cstddef>

#if defined(__GNUC__) && defined(_UCRT) && !defined(BIOS_CONFIG_MODULE_UCRT)
#error "The module is built for msvcrt.dll and this host for ucrtbase.dll: what one side allocates the other could not free, so both need the same C library: see 'Build requirement' in HostGuide.md."
#elif defined(BIOS_CONFIG_MODULE_UCRT) && !defined(_UCRT)
#error "The module is built for ucrtbase.dll and this host for msvcrt.dll: what one side allocates the other could not free, so both need the same C library: see 'Build requirement' in HostGuide.md."
#endif
