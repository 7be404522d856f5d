#pragma once

#include "ExitCode.h"
#include "OutputKind.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

enum class Command
{
    List,
    Get,
    Show,
    Search,
    Pages,
    Diff,
    Export,
    View,
    Check,
    Update,
    Set,
    Reset,
    Report,
    Capabilities,
    Doctor,
    Completion,
    Help,
    /// For the scripts of `completion`: what could stand at the end of a command line.
    Complete,
    /// The manual page, made when the program is built.
    Manual
};

enum class ColorWish
{
    Auto,
    Always,
    Never
};

/// What the command line and the environment ask for.
struct Arguments
{
    Command command = Command::List;
    std::string commandName;

    /// The module's file.
    std::string modulePath;
    /// The tool directory as the user gave it; empty: none was given.
    std::string toolDirectory;
    /// The directory in the place of the environment variable ProgramFiles; empty: as that says.
    std::string programFiles;
    /// The dump to be read in the place of the machine; empty: the machine.
    std::string dumpPath;
    /// After how many seconds a step with the external tool is given up; 0: never.
    std::uint32_t timeLimit = 0;

    bool isJson = false;
    bool isCsv = false;
    bool isQuiet = false;
    bool isVerbose = false;
    ColorWish color = ColorWish::Auto;
    bool isRedacted = false;
    std::vector<std::string> redactedToo;
    /// The file for the data; "-" is standard output.
    std::string outputPath = "-";

    /// What stands behind the command: names, patterns, a text, dumps, a template, assignments, a shell.
    std::vector<std::string> words;
    std::string page;
    bool onlyChanged = false;
    bool onlyPending = false;
    bool toDefaults = false;
    bool tellsDifferenceByExitCode = false;
    bool isDryRun = false;
    bool isAgreed = false;
    bool onlyChanges = false;
    bool allOptions = false;
    /// The files to be compared with the options.
    std::vector<std::string> comparedPaths;
    bool tellsNoTime = false;
    bool opensPage = false;

    std::string formatName = "ui-xml";
    OutputKind format = OutputKind::UiXml;
    std::string capability = "all";
};

/// Reads the command line and the environment variables that stand in for options. When there is nothing to do (help,
/// version) prints what there is to say, stores the exit code and gives nothing. Throws Failure for a wrong command
/// line.
std::optional<Arguments> ParseArguments(int argumentCount, const char *const *arguments, ExitCode &exitCode);

/// An option of the command line, for those who complete or describe it.
struct OptionHelp
{
    /// All its spellings, such as "-o,--output", with the name of its value, if it takes one.
    std::string names;
    std::string valueName;
    std::string text;
    /// The values that it takes, where they are few.
    std::vector<std::string> values;
};

/// A command, for those who complete or describe it.
struct CommandHelp
{
    Command command;
    std::string name;
    /// What stands behind it, such as "[GLOB...]".
    std::string words;
    std::string text;
    std::vector<OptionHelp> options;
};

/// All commands that users are told of, in the order of the help.
std::vector<CommandHelp> DescribeCommands();

/// The texts below the help of the whole program: name and text.
struct HelpTopic
{
    const char *title;
    std::string text;
};
std::vector<HelpTopic> DescribeTopics();
