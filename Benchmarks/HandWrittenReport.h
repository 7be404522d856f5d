#pragma once

#include <string>

/// What a report costs at least: one function that makes the library calls of the UI XML report and nothing else. Reads
/// the dump at `dumpPath`, writes the report to `reportPath` and returns it.
std::string HandWrittenReport(const std::string &dumpPath, const std::string &reportPath);
