#pragma once

#include "SettingsSource.h"

/// The settings of a machine whose management controller has a Redfish service (Configuration::redfish). An end from
/// outside (Ctrl-C, SIGTERM) breaks off what only reads, waits for what programs, and comes when the source has gone
/// and its session is ended.
std::unique_ptr<SettingsSource> MakeRedfishSource(const Configuration &configuration, WarningSink warn);
