#pragma once

#include "HostCompiler.h"

#include <cstdint>

/// What nearly every operation returns. The values are fixed: host and module exchange them as plain numbers.
using Status = std::uint32_t;

namespace StatusCode
{

/// The operation did what it says.
constexpr Status Success = 1;
/// An argument is empty (or null, where the operation says so), an item is not found or not registered, or the
/// external tool ended with exit code 1.
constexpr Status NotFound = 2;
/// Memory could not be had.
constexpr Status NoMemory = 3;
/// A null argument, or something that an earlier operation creates is missing: no document, no buffer, no handle.
constexpr Status Missing = 4;
/// The operation failed or what it needs is unavailable: a file not accepted or unreadable, a tool not started, a
/// failed call of the system, bad configuration.
constexpr Status Failed = 5;
/// The external tool ran and ended with an exit code other than 0 and 1.
constexpr Status ToolFailed = 6;

} // namespace StatusCode
