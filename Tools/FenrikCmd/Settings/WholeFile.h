#pragma once

#include "Platform.h"

#include <cstdio>
#include <functional>
#include <string>

/// Puts a new file in the place of the one at `path` in one step (Platform::ReplacedFile), once `write` has written all
/// of it; where that fails, the earlier file stays. `write` returns false when it could not write something. Throws
/// ToolError (CannotWrite), and whatever `write` throws.
void WriteWholeFile(const std::string &path, const std::function<bool(std::FILE *stream)> &write,
                    Platform::FileAccess access = Platform::FileAccess::Usual);
