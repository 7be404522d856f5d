#pragma once

#include "OutputKind.h"

#include <string>

/// What a report costs with the bare library calls: parse the dump, ask each option for its attributes, keep records,
/// make the document of `kind` and its text, write the file, free everything. No trace, no check, no status. Reads the
/// dump at `dumpPath`, writes the report to `reportPath` and returns it.
std::string HandWrittenReport(OutputKind kind, const std::string &dumpPath, const std::string &reportPath);
