#pragma once

#include "Arguments.h"
#include "TemporaryFolder.h"

#include <string>

/// What is done through the module, as any host would do it.

/// Makes the report, or the list of capabilities, and writes it; `commandLine` is what main was given. Messages and the
/// errors that the module records go to standard error. Throws Failure where nothing could be done.
ExitCode ReportOrCapabilities(const Arguments &arguments, char *const *commandLine);

/// Makes a tool directory for a module that is given no other, and gives its path with its final separator. Not in a
/// worker: one that is ended would leave it behind.
std::string MakeModulePlace(TemporaryFolder &folder);

// What a worker does.

/// The whole of that, with a time limit.
ExitCode ReportInWorker(const Arguments &arguments);

/// Has the module program the template at `path` and gives its message. Without a tool directory of the user's, the
/// template's folder is one (MakeModulePlace). Throws Failure with the module's message.
std::string ProgramTemplate(const Arguments &arguments, const std::string &path);

/// Loads the module, initialises it with the tool directory `place`, and says what it is.
std::string DescribeModule(const Arguments &arguments, const std::string &place);
