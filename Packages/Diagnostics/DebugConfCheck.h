#pragma once

#include <string>
#include <vector>

/// What is wrong with debug.conf in the working directory, one text for every fault: a file that cannot be read, the
/// first line that cannot be used, or the log files that cannot be written. Empty when there is no such file or nothing
/// is wrong with it. Leaves all files as they are. Throws std::bad_alloc only.
std::vector<std::string> CheckDebugConf();

/// The settings of debug.conf in the working directory that have no effect, one text for each: those of unknown
/// components, those that others undo, files that get no lines. Empty when there is no such file or it cannot be used.
/// Throws std::bad_alloc only.
std::vector<std::string> UselessDebugConfSettings();
