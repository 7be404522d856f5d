#pragma once

#include "DebugHandle.h"

#include <cstddef>

/// Writes the `length` bytes at `data` through DebugTrace: a banner line (function name empty, line 0), then a line for
/// every eight bytes with the address of the first and the bytes in hexadecimal. Allocates nothing. Returns Success,
/// whether or not something was written; Missing for a null handle or null data; NotFound for a handle whose name is
/// not open.
Status DebugTraceValues(const DebugHandle_t *handle, std::uint32_t level, const void *data, std::size_t length,
                        const char *sourceFile, const char *functionName, std::uint32_t line);
