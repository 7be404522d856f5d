#pragma once

/// Everything a host compiles against. Host and module must be built with the same compiler and standard library,
/// because they exchange standard-library objects.

#include "BaseAbstraction.h"
#include "BaseModule.h"

/// The file name of the module without the system's prefix and ending: BiosConfigModule.dll, libBiosConfigModule.so.
#define BIOS_CONFIG_MODULE_STEM "BiosConfigModule"

/// The module's own build says here how an export is marked; a host leaves it alone.
#ifndef BIOS_CONFIG_EXPORT
#define BIOS_CONFIG_EXPORT
#endif

extern "C"
{
    /// Creates a module object, or gives null when memory runs out. The caller owns it and gives it back with
    /// DestroyBiosConfigModule (or deletes it through either interface).
    BIOS_CONFIG_EXPORT BaseModule *CreateBiosConfigModule();

    /// Destroys a module object in any state; null is ignored.
    BIOS_CONFIG_EXPORT void DestroyBiosConfigModule(BaseModule *module);
}
