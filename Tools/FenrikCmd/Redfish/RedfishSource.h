#pragma once

#include "SettingsSource.h"

/// The settings of a machine whose management controller has a Redfish service (Configuration::redfish). What waits for
/// the end of the program (Platform::DelayedInterruption) comes when the source goes and its session is ended.
std::unique_ptr<SettingsSource> MakeRedfishSource(const Configuration &configuration, WarningSink warn);
