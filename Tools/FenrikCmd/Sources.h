#pragma once

#include "SettingsSource.h"

/// The source that `configuration` chooses (MakeSource). Throws ToolError (InterfaceDisabled) where this system has no
/// such source.
std::unique_ptr<SettingsSource> OpenSource(const Configuration &configuration, WarningSink warn);
