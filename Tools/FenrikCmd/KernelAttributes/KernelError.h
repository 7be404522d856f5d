#pragma once

#include "ToolError.h"

#include <string>
#include <system_error>

/// What the errors of the kernel's firmware attributes mean to a user.

/// Why a value could not be read, a phrase such as "permission denied".
std::string ReadFailure(const std::error_code &error);

/// Why a value was not taken, a phrase with the way out where there is one.
std::string WriteFailure(const std::error_code &error);

/// What the tool ends with when a driver has refused a write: BadInput where it is the value's fault.
ExitCode CodeOfWriteFailure(const std::error_code &error);
