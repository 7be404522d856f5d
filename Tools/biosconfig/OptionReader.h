#pragma once

#include "Machine.h"

#include <string>

/// Reads the options of a JSON object that biosconfig has written (`list --json`, with or without --redact), in UTF-8,
/// by nlohmann/json. Counted as damaged where its options are those of a damaged dump. Throws Failure: NotFound where
/// the file cannot be read, NotValid where it is something else. What a list does not tell (redacted values) is empty,
/// and its option marked as redacted.
LoadedOptions ReadOptionList(const std::string &file);
