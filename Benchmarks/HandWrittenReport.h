#pragma once

#include "OutputKind.h"

#include <string>

/// What a report costs at least: one function that makes the library calls of the report of `kind` and nothing else.
/// Reads the dump at `dumpPath`, writes the report to `reportPath` and returns it.
std::string HandWrittenReport(OutputKind kind, const std::string &dumpPath, const std::string &reportPath);
