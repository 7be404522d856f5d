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

    /// Has the external tool program the BIOS options that a template assigns; they take effect with the machine's
    /// restart. The text after the first "." of the whole path says what the template is: "ini" a knob file, "txt" a
    /// list of assignments (any letter case). `params` as for InitModule; no module object is needed or left behind.
    /// Puts the outcome for the user into `message`, or leaves it unchanged when nothing could be tried. Returns
    /// Success; with `message` unchanged Failed when the template is of neither kind or its path holds a double-quote
    /// character, else what InitModule returned; with a message what BaseAbstraction::Initialize returned, NotFound
    /// when the tool refused the settings with exit code 1, ToolFailed for another exit code, Failed when it could not
    /// be started or an earlier knob file could not be replaced; NoMemory.
    BIOS_CONFIG_EXPORT Status UpdateBiosSettings(std::string templatePath, std::string &message, ParameterMap params);
}
