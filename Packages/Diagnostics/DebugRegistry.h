#pragma once

#include "DebugHandle.h"

/// The open handles, for the rest of the library.

/// The open handle of the name that `handle` carries, or null.
DebugHandle_t *FindRegistered(const DebugHandle_t &handle);

/// The open handle at `index` in the order of their opening, or null beyond the last.
DebugHandle_t *RegisteredHandle(std::uint32_t index);
