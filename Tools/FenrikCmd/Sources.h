#pragma once

#include "SettingsSource.h"

#include <span>

struct SourceMaker
{
    SourceKind kind;
    MakeSource make;
};

/// The sources of real machines that there are on this system; the build picks the table.
extern const std::span<const SourceMaker> kRealSources;

/// The source that `configuration` chooses (MakeSource). Throws ToolError (InterfaceDisabled) where this system has no
/// such source.
std::unique_ptr<SettingsSource> OpenSource(const Configuration &configuration, WarningSink warn);
