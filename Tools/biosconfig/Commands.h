#pragma once

#include "Arguments.h"
#include "Machine.h"
#include "Output.h"
#include "Steps.h"

/// What every command works with.
struct Work
{
    const Arguments &arguments;
    const Steps &steps;
    Output &output;
};

/// The commands. Each adds its data to the output and gives the program's exit code, or throws Failure.
ExitCode ListOptions(const Work &work);
ExitCode GetValues(const Work &work);
ExitCode ShowOptions(const Work &work);
ExitCode SearchOptions(const Work &work);
ExitCode ListPages(const Work &work);
ExitCode DiffOptions(const Work &work);
ExitCode ExportTemplate(const Work &work);
ExitCode ViewOptions(const Work &work);
ExitCode CheckTemplate(const Work &work);
ExitCode UpdateFromTemplate(const Work &work);
ExitCode SetOptions(const Work &work);
ExitCode ResetOptions(const Work &work);
ExitCode Doctor(const Work &work);
ExitCode PrintCompletion(const Work &work);
ExitCode CompleteWords(const Work &work);
ExitCode PrintManual(const Work &work);

/// The options that the patterns of the command line, --page and --changed leave, in the order of the dump. `code` is
/// set to NotFound, and the user told, where a pattern or the page fits no option.
std::vector<const BiosOption *> SelectOptions(const Work &work, const OptionTable &table, ExitCode &code);

/// The options of the names on the command line, told of as for SelectOptions.
std::vector<const BiosOption *> FindOptions(const Work &work, const OptionTable &table, ExitCode &code);
