#pragma once

#include "DebugHandle.h"

#include <string>

/// What the parts of the knob library share: where the external tool is and how it is called.

/// The source file that all of the library's traces name.
inline constexpr const char *kKnobLibrarySource = "BIOSConfigurationLib";

/// The external tool's directory with its final backslash; empty until the library has been initialised.
extern std::string toolDirectory;

/// The handle of all of the library's traces; null until the library has been initialised.
extern DebugHandle_t *libDebugHandle;

/// The command line that has the tool run `command`, without and with the path of a file. Nothing in a path is escaped.
std::string ToolCommand(const std::string &command);
std::string ToolCommand(const std::string &command, const std::string &file);

/// Whether the text after the last "." of a file name is "ini" in any letter case. A name without "." passes.
bool HasIniExtension(const std::string &fileName);
