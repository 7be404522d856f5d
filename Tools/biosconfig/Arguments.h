#pragma once

#include "ExitCode.h"
#include "OutputKind.h"

#include <cstdint>
#include <optional>
#include <string>

/// What the command line and the environment ask for.
struct Arguments
{
    enum class Command
    {
        Report,
        Capabilities,
        Update
    };

    Command command = Command::Report;
    /// The module's file.
    std::string modulePath;
    /// The tool directory as the user gave it.
    std::string toolDirectory = ".";
    /// The directory in the place of the environment variable ProgramFiles; empty: as that says.
    std::string programFiles;
    std::string formatName = "ui-xml";
    OutputKind format = OutputKind::UiXml;
    std::string option = "all";
    /// The template of an update, as the user gave it.
    std::string templatePath;
    /// After how many seconds the work is given up; 0: never.
    std::uint32_t timeLimit = 0;
    /// The file for the data; "-" is standard output.
    std::string outputPath = "-";
};

/// Reads the command line and the environment variables that stand in for options. When there is nothing to do (help,
/// version, a wrong command line) prints what there is to say, stores the exit code and gives nothing.
std::optional<Arguments> ParseArguments(int argumentCount, const char *const *arguments, ExitCode &exitCode);
