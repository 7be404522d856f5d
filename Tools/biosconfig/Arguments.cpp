#include "Arguments.h"

#include "BiosConfigModule.h"
#include "OptionTable.h"
#include "Platform.h"
#include "Redaction.h"
#include "Terminal.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

namespace
{

struct Format
{
    std::string_view name;
    OutputKind kind;
};

constexpr Format kFormats[] = {{"ui-xml", OutputKind::UiXml},     {"log-xml", OutputKind::LogXml},
                               {"log-html", OutputKind::LogHtml}, {"log-html-xml", OutputKind::LogHtmlXml},
                               {"log-json", OutputKind::LogJson}, {"ui-json", OutputKind::UiJson}};
static_assert(kOutputKindCount == 10, "a new kind of report wants a name here");

constexpr int kLongestTimeLimit = 1'000'000;

/// Groups of options that commands share.
constexpr unsigned kFromDump = 1U << 0U;
constexpr unsigned kTool = 1U << 1U;
constexpr unsigned kModule = 1U << 2U;
constexpr unsigned kShown = 1U << 3U;
constexpr unsigned kJson = 1U << 4U;
constexpr unsigned kRedact = 1U << 5U;
constexpr unsigned kOutput = 1U << 6U;
constexpr unsigned kProgram = 1U << 7U;
constexpr unsigned kChanged = 1U << 8U;
constexpr unsigned kReading = kFromDump | kTool | kShown | kJson | kRedact | kOutput;
constexpr unsigned kProgramming = kTool | kModule | kShown | kJson | kRedact | kOutput | kProgram;

struct CommandLine
{
    Command command;
    const char *name;
    /// What stands behind it: the placeholder, whether it must be there, and how many there may be.
    const char *words;
    int fewestWords;
    int mostWords;
    unsigned groups;
    const char *text;
    /// Not told of.
    bool isHidden = false;
};

constexpr int kAnyNumber = 1 << 20;

constexpr CommandLine kCommands[] = {
    {Command::List, "list", "[GLOB...]", 0, kAnyNumber, kReading | kChanged,
     "Lists options, a line each: name, value, prompt, page"},
    {Command::Get, "get", "NAME...", 1, kAnyNumber, kReading, "Prints the values of options, a line each"},
    {Command::Show, "show", "NAME...", 1, kAnyNumber, kReading, "Shows everything about options"},
    {Command::Search, "search", "TEXT", 1, 1, kReading, "Finds a text in names, prompts, help texts and choices"},
    {Command::Pages, "pages", "", 0, 0, kReading, "Shows the setup pages, with counts and changed options"},
    {Command::Diff, "diff", "[A] [B]", 0, 2, kReading,
     "Shows what differs: between two dumps, a dump and this machine, or (--defaults) the defaults and the values"},
    {Command::Export, "export", "[GLOB...]", 0, kAnyNumber, kReading | kChanged,
     "Writes a template that \"update\" takes back; to a file .ini a knob file, to a file .xml the whole dump"},
    {Command::View, "view", "", 0, 0, kFromDump | kTool | kShown | kRedact | kOutput,
     "Makes a page for a browser: to find options, to see what was changed, to compare machines"},
    {Command::Check, "check", "TEMPLATE", 1, 1, kFromDump | kTool | kShown | kJson | kRedact | kOutput,
     "Judges a template as \"update\" would, and writes nothing"},
    {Command::Update, "update", "TEMPLATE", 1, 1, kProgramming | kFromDump,
     "Programs the options of a template: shows the plan, asks, programs, reads back"},
    {Command::Set, "set", "NAME=VALUE...", 1, kAnyNumber, kProgramming | kFromDump,
     "Programs single options, as \"update\" does"},
    {Command::Reset, "reset", "[NAME...]", 0, kAnyNumber, kProgramming | kFromDump,
     "Programs the defaults of options, or (--all) of all"},
    {Command::Report, "report", "", 0, 0, kTool | kModule | kOutput, "Has the module make a report and prints it"},
    {Command::Capabilities, "capabilities", "", 0, 0, kTool | kModule,
     "Prints what the module offers, one capability per line: name, tab, description"},
    {Command::Doctor, "doctor", "", 0, 0, kTool | kModule | kShown | kJson | kOutput,
     "Checks what is needed, and says how to mend what is not there"},
    {Command::Completion, "completion", "SHELL", 1, 1, kOutput,
     "Prints a script that completes command lines in bash, zsh, fish or powershell"},
    {Command::Help, "help", "[COMMAND]", 0, 1, 0, "Shows this help, or that of a command"},
    {Command::Complete, "complete-words", "[WORD...]", 0, kAnyNumber, 0, "Completes a command line", true},
    {Command::Manual, "manual-page", "", 0, 0, kOutput, "Prints the manual page", true}};

constexpr const char *kToolTopic =
    R"(Options are read, and programmed, by an external tool that is found through the environment variable
ProgramFiles, or through --program-files:
  <ProgramFiles>/Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK/FenrikBinary/FenrikCmd.exe
With --from a dump is read in its place, and no tool is needed. Programmed values take effect when the machine
is restarted.
)";

constexpr const char *kModuleTopic =
    R"(report, capabilities, update, set and reset go through the module, as any host does. In the tool directory
the module reads CapsList.json and records errors in Error.xml; a copy of each report goes into the folder
ModuleData there, if that folder exists. update, set and reset need no tool directory: without one they use one
of their own for a moment. Traces of the module are switched on by a file debug.conf in the working directory.
)";

constexpr const char *kTemplatesTopic =
    R"(A file .txt holds assignments, NAME=VALUE, with a ";" between two of them; there are no comments. A value ends with its
line, so an assignment a line reads
  BootFast=Enabled
  ;BootMode=Legacy
A file .ini is a knob file: an assignment a line, [sections], and comments behind ";" and "#".
A value is a choice's text or number; numbers are decimal, or hexadecimal with 0x.
)";

constexpr const char *kStreamsTopic =
    R"(Data go to standard output, or to the file of -o; everything else goes to standard error. Colour, cut columns
and progress appear on a terminal only. With --json the data are always one JSON object, also of a failure.
)";

constexpr const char *kExamples = R"(  biosconfig list 'Boot*'                          what is it set to?
  biosconfig diff --defaults                       what was changed on this machine?
  biosconfig check bench.txt                       will this template fit?
  biosconfig update bench.txt                      apply it, and prove it
  biosconfig export --redact -o settings.txt       settings to be sent to somebody
  biosconfig view --open                           look around
  biosconfig report --tool-dir /opt/tarnwell -o bios.xml
)";

/// A variable of a script that was never set is no wish.
const CLI::Validator kNotEmpty([](const std::string &value) { return value.empty() ? "it is empty" : std::string(); },
                               "");

std::vector<std::string> FormatNames()
{
    std::vector<std::string> names;
    for (const Format &format : kFormats)
        names.emplace_back(format.name);
    return names;
}

OutputKind KindOf(std::string_view formatName)
{
    for (const Format &format : kFormats)
    {
        if (format.name == formatName)
            return format.kind;
    }
    throw Failure(ExitCode::WrongUsage, "unknown format " + std::string(formatName));
}

std::string ExitCodesText()
{
    std::string text;
    for (const ExitCodeMeaning &meaning : kExitCodeMeanings)
    {
        const std::string number = std::to_string(static_cast<int>(meaning.code));
        text += std::string(4 - number.size(), ' ') + number + "  " + meaning.text + "\n";
    }
    return text;
}

std::string RedactedText()
{
    std::string text =
        "--redact hides the values of all text options, and of options whose name, prompt or page matches\n"
        "one of these patterns (--redact-also adds one), in every format:\n ";
    std::size_t column = 0;
    for (const std::string_view pattern : RedactedPatterns())
    {
        text += (column > 90 ? "\n  " : " ") + std::string(pattern);
        column = column > 90 ? pattern.size() : column + pattern.size() + 1;
    }
    return text + "\n";
}

std::string Footer()
{
    std::string footer;
    for (const HelpTopic &topic : DescribeTopics())
        footer += "\n" + std::string(topic.title) + ":\n" + topic.text;
    return footer;
}

void AddToolOptions(CLI::App &command, Arguments &parsed)
{
    command
        .add_option("--program-files", parsed.programFiles,
                    "Where the external tool is installed, in the place of the environment variable ProgramFiles")
        ->envname("BIOSCONFIG_PROGRAM_FILES")
        ->type_name("DIR");
    command
        .add_option("--timeout", parsed.timeLimit,
                    "After how many seconds to give up a step with the external tool: it is ended then, with whatever "
                    "it has started; without it the tool has all the time that it takes")
        ->envname("BIOSCONFIG_TIMEOUT")
        ->check(CLI::Range(1, kLongestTimeLimit))
        ->type_name("SECONDS");
}

void AddModuleOptions(CLI::App &command, Arguments &parsed)
{
    command
        .add_option("--tool-dir", parsed.toolDirectory,
                    "The host's tool directory; a final separator is added when it is missing")
        ->envname("BIOSCONFIG_TOOL_DIR")
        ->type_name("DIR");
    command
        .add_option("--module", parsed.modulePath,
                    "The module's file; without it the one beside this program or in " BIOSCONFIG_LIBRARY_PLACE)
        ->envname("BIOSCONFIG_MODULE")
        ->type_name("FILE");
}

void AddShownOptions(CLI::App &command, Arguments &parsed)
{
    command
        .add_option_function<std::string>(
            "--color",
            [&parsed](const std::string &wish) {
                parsed.color = wish == "always"  ? ColorWish::Always
                               : wish == "never" ? ColorWish::Never
                                                 : ColorWish::Auto;
            },
            "When to use colour; \"auto\" is on a terminal, unless NO_COLOR is set")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->type_name("WHEN");
    command.add_flag("-q,--quiet", parsed.isQuiet, "Only errors on standard error");
    command.add_flag("-v,--verbose", parsed.isVerbose, "Also what the external tool says, and how long steps take");
}

void AddRedactOptions(CLI::App &command, Arguments &parsed)
{
    command.add_flag("--redact", parsed.isRedacted, "Hides values that tell of a person, a place or a secret");
    command
        .add_option("--redact-also", parsed.redactedToo,
                    "The same, and hides those of options whose name, prompt or page matches (may be given again)")
        ->type_name("GLOB")
        ->allow_extra_args(false);
}

void AddProgramOptions(CLI::App &command, Arguments &parsed)
{
    command.add_flag("-n,--dry-run", parsed.isDryRun, "Shows the plan and programs nothing");
    command.add_flag("-y,--yes", parsed.isAgreed, "Does not ask; without a terminal nobody is asked anyway");
    command.add_flag("--only-changes", parsed.onlyChanges,
                     "Leaves options out that have their value already, instead of programming them again");
    command.add_flag("--exit-code", parsed.tellsDifferenceByExitCode, "Ends with 2 when there is something to program");
}

void AddOwnOptions(CLI::App &command, Command which, Arguments &parsed)
{
    if (which == Command::List)
    {
        command.add_option("--page", parsed.page, "Only options on this setup page and below")
            ->check(kNotEmpty)
            ->type_name("PAGE");
        command.add_flag("--pending", parsed.onlyPending, "Only options that wait for a restart, where the tool tells");
        command.add_flag("--csv", parsed.isCsv, "Comma-separated values with a head line")->excludes("--json");
    }
    if (which == Command::Diff)
    {
        command.add_flag("--defaults", parsed.toDefaults, "Compares the values with the defaults");
        command.add_flag("--exit-code", parsed.tellsDifferenceByExitCode, "Ends with 2 when something differs");
    }
    if (which == Command::View)
    {
        command
            .add_option(
                "--compare", parsed.comparedPaths,
                "Also the options of this file, a dump or what \"list --json\" has written (may be given again)")
            ->check(kNotEmpty)
            ->type_name("FILE")
            ->allow_extra_args(false);
        command.add_flag("--no-time", parsed.tellsNoTime, "Does not say when the page was made");
        command.add_flag("--open", parsed.opensPage,
                         "Opens the page in the browser; without -o it is kept among the temporary files");
    }
    if (which == Command::Reset)
        command.add_flag("--all", parsed.allOptions, "All options");
    if (which != Command::Report)
        return;
    command.add_option("--format", parsed.formatName, "The format of the report")
        ->envname("BIOSCONFIG_FORMAT")
        ->check(CLI::IsMember(FormatNames()))
        ->type_name("NAME")
        ->capture_default_str();
    command.add_option("--option", parsed.capability, "A capability's name, or \"all\" for the first one")
        ->type_name("NAME")
        ->capture_default_str();
}

void AddOptions(CLI::App &command, const CommandLine &line, Arguments &parsed)
{
    const unsigned groups = line.groups;
    if (groups & kFromDump)
        command
            .add_option("--from", parsed.dumpPath,
                        "A dump to be read in the place of this machine, or a file .json of \"list --json\"")
            ->check(kNotEmpty)
            ->type_name("FILE");
    if (groups & kChanged)
        command.add_flag("--changed", parsed.onlyChanged, "Only options whose value is not their default");
    if (groups & kTool)
        AddToolOptions(command, parsed);
    if (groups & kModule)
        AddModuleOptions(command, parsed);
    if (groups & kJson)
        command.add_flag("--json", parsed.isJson, "One JSON object, also of a failure");
    if (groups & kShown)
        AddShownOptions(command, parsed);
    if (groups & kRedact)
        AddRedactOptions(command, parsed);
    if (groups & kProgram)
        AddProgramOptions(command, parsed);
    AddOwnOptions(command, line.command, parsed);
    if (groups & kOutput)
        command
            .add_option("-o,--output", parsed.outputPath,
                        "Where the data go, \"-\" is standard output; an existing file is replaced in one step, and "
                        "only when there are data")
            ->type_name("FILE")
            ->capture_default_str();
    if (line.mostWords > 0)
        command.add_option("WORDS", parsed.words)
            ->required(line.fewestWords > 0)
            ->expected(std::max(line.fewestWords, 1), line.mostWords)
            ->group("");
}

const CommandLine *FindCommand(std::string_view name)
{
    const auto *const found = std::find_if(std::begin(kCommands), std::end(kCommands),
                                           [&](const CommandLine &line) { return line.name == name; });
    return found == std::end(kCommands) ? nullptr : found;
}

/// Shows the words behind a command as the table has them.
class HelpFormatter : public CLI::Formatter
{
public:
    std::string make_usage(const CLI::App *app, std::string /*name*/) const override
    {
        const CommandLine *const line = FindCommand(app->get_name());
        if (!line)
            return "Usage: biosconfig COMMAND [OPTIONS] [ARGUMENTS]\n";
        return "Usage: biosconfig " + std::string(line->name) + (*line->words ? " " : "") + line->words +
               (line->groups != 0 ? " [OPTIONS]" : "") + "\n";
    }

    std::string make_option_desc(const CLI::Option *option) const override
    {
        constexpr std::size_t kColumns = 70;
        std::string text;
        for (const std::string &line : Wrap(option->get_description(), kColumns))
            text += (text.empty() ? "" : "\n") + line;
        return text;
    }
};

/// What is stored for each command, in the order of kCommands. Not in one place for all: what stands for an option in
/// the environment is stored for the commands that were not given, too.
using ParsedCommands = std::array<Arguments, std::size(kCommands)>;

/// The parser of the whole command line, which stores into `parsed`.
std::unique_ptr<CLI::App> MakeParser(ParsedCommands &parsed)
{
    auto app = std::make_unique<CLI::App>(
        "Shows this machine's BIOS options, makes reports of them, and programs them.", "biosconfig");
    app->set_version_flag("--version", "biosconfig " BIOSCONFIG_VERSION);
    app->formatter(std::make_shared<HelpFormatter>());
    app->allow_windows_style_options(false); // a path may begin with "/"
    app->require_subcommand(1);
    for (const CommandLine &line : kCommands)
    {
        CLI::App *const command = app->add_subcommand(line.name, line.text);
        command->footer("\n\"biosconfig help\" tells of the external tool, the module, redaction and exit codes.");
        if (line.isHidden)
            command->group("");
        AddOptions(*command, line, parsed[static_cast<std::size_t>(&line - kCommands)]);
    }
    app->footer(Footer());
    return app;
}

[[noreturn]] void RefuseUsage(const std::string &message, const std::string &command = "")
{
    throw Failure(ExitCode::WrongUsage,
                  message + "; see \"biosconfig " + command + (command.empty() ? "" : " ") + "--help\"");
}

/// Refuses a word that is no command, with the nearest one.
[[noreturn]] void RefuseCommand(const std::string &word)
{
    std::vector<std::string_view> names;
    for (const CommandLine &line : kCommands)
    {
        if (!line.isHidden)
            names.emplace_back(line.name);
    }
    const std::string nearest(Nearest(word, names));
    RefuseUsage("there is no command \"" + word + "\"" +
                (nearest.empty() ? "" : "; did you mean \"" + nearest + "\"?"));
}

ExitCode ShowHelp(CLI::App &app, const std::vector<std::string> &words)
{
    const CommandLine *const line = words.empty() ? nullptr : FindCommand(words.front());
    if (!words.empty() && !line)
        RefuseCommand(words.front());
    std::fputs((line ? app.get_subcommand(line->name)->help() : app.help()).c_str(), stdout);
    return ExitCode::Done;
}

/// What a wrong command line is told.
std::string UsageMessage(const CLI::ParseError &error, const CommandLine &line, const CLI::App &command)
{
    if (command.remaining_size() > 0)
    {
        const std::string word = command.remaining().front();
        std::vector<std::string> names;
        for (const CLI::Option *const option :
             command.get_options([](const CLI::Option *known) { return !known->get_group().empty(); }))
            names.push_back("--" + option->get_single_name());
        const std::string nearest(Nearest(word, {names.begin(), names.end()}));
        if (word.starts_with('-'))
            return "\"" + word + "\" is no option of \"" + line.name + "\"" +
                   (nearest.empty() ? "" : "; did you mean \"" + nearest + "\"?");
        return "\"" + word + "\" is too much for \"" + line.name + "\"";
    }
    // The words have no name of their own.
    const std::string message = error.what();
    return message.find_first_of(" :") == 0 ? "\"" + std::string(line.name) + "\" wants " + line.words : message;
}

/// The first word that is no option; empty when there is none.
std::string FirstWord(int argumentCount, const char *const *arguments)
{
    for (int index = 1; index < argumentCount; ++index)
    {
        if (*arguments[index] != '-')
            return arguments[index];
    }
    return {};
}

std::string DefaultModulePath()
{
    std::string beside = Platform::ExecutableDirectory() + Platform::SharedLibraryFileName(BIOS_CONFIG_MODULE_STEM);
    if (Platform::OpenStream(beside, "rb"))
        return beside;
    return Platform::ExecutableDirectory() + BIOSCONFIG_LIBRARY_PLACE "/" +
           Platform::SharedLibraryFileName(BIOS_CONFIG_MODULE_STEM);
}

/// The command line to complete is not one to be judged.
Arguments WordsToComplete(int argumentCount, const char *const *arguments)
{
    Arguments parsed;
    parsed.command = Command::Complete;
    parsed.words.assign(arguments + 2, arguments + argumentCount);
    if (!parsed.words.empty() && parsed.words.front() == "--")
        parsed.words.erase(parsed.words.begin());
    return parsed;
}

/// What cannot be said by the table; empty when all is well.
std::string FindContradiction(const Arguments &parsed)
{
    if (parsed.command == Command::Diff && parsed.toDefaults && !parsed.words.empty())
        return "--defaults compares one machine with its defaults; name its dump with --from";
    if (parsed.command == Command::Diff && !parsed.toDefaults && parsed.words.empty())
        return "\"diff\" wants one or two dumps, or --defaults";
    if (parsed.command == Command::Reset && parsed.allOptions == !parsed.words.empty())
        return "\"reset\" wants the names of options, or --all";
    const bool programs =
        parsed.command == Command::Update || parsed.command == Command::Set || parsed.command == Command::Reset;
    if (programs && !parsed.dumpPath.empty() && !parsed.isDryRun)
        return "a dump cannot be programmed; --from goes with --dry-run";
    return {};
}

} // namespace

const ExitCodeMeaning &MeaningOf(ExitCode code)
{
    const auto *const found = std::find_if(std::begin(kExitCodeMeanings), std::end(kExitCodeMeanings),
                                           [&](const ExitCodeMeaning &meaning) { return meaning.code == code; });
    return found == std::end(kExitCodeMeanings) ? kExitCodeMeanings[1] : *found;
}

std::optional<Arguments> ParseArguments(int argumentCount, const char *const *arguments, ExitCode &exitCode)
{
    ParsedCommands commands;
    const std::unique_ptr<CLI::App> app = MakeParser(commands);
    const std::string name = FirstWord(argumentCount, arguments);
    const CommandLine *const line = FindCommand(name);
    if (line && line->command == Command::Complete)
        return WordsToComplete(argumentCount, arguments);
    try
    {
        if (!name.empty() && !line)
            throw CLI::ExtrasError({name});
        app->parse(argumentCount, arguments);
    }
    catch (const CLI::ParseError &end)
    {
        exitCode = ExitCode::Done;
        if (end.get_exit_code() == 0)
            app->exit(end);
        else if (name.empty())
            RefuseUsage("a command is missing");
        else if (!line)
            RefuseCommand(name);
        else if (name != arguments[1])
            RefuseUsage("options stand behind the command: \"biosconfig " + name + " " + arguments[1] + "\"");
        else
            RefuseUsage(UsageMessage(end, *line, *app->get_subcommand(line->name)), name);
        return std::nullopt;
    }
    Arguments &parsed = commands[static_cast<std::size_t>(line - kCommands)];
    parsed.isRedacted = parsed.isRedacted || !parsed.redactedToo.empty();
    parsed.command = line->command;
    parsed.commandName = line->name;
    if (parsed.command == Command::Help)
    {
        exitCode = ShowHelp(*app, parsed.words);
        return std::nullopt;
    }
    const std::string contradiction = FindContradiction(parsed);
    if (!contradiction.empty())
    {
        RefuseUsage(contradiction, name);
    }
    if (parsed.modulePath.empty())
        parsed.modulePath = DefaultModulePath();
    parsed.format = KindOf(parsed.formatName);
    return parsed;
}

std::vector<CommandHelp> DescribeCommands()
{
    ParsedCommands unused;
    const std::unique_ptr<CLI::App> app = MakeParser(unused);
    std::vector<CommandHelp> commands;
    for (const CommandLine &line : kCommands)
    {
        if (line.isHidden)
            continue;
        CommandHelp help = {line.command, line.name, line.words, line.text, {}};
        for (const CLI::Option *const option : app->get_subcommand(line.name)->get_options())
        {
            if (option->get_group().empty())
                continue;
            const bool takesValue = option->get_expected_max() > 0;
            const std::string environment = option->get_envname();
            OptionHelp described = {option->get_name(false, true),
                                    takesValue ? option->get_type_name() : "",
                                    option->get_description(),
                                    {}};
            described.valueName = described.valueName.substr(0, described.valueName.find(':'));
            if (!environment.empty())
                described.text += "; or the environment variable " + environment;
            if (described.names.find("--color") != std::string::npos)
                described.values = {"auto", "always", "never"};
            if (described.names.find("--format") != std::string::npos)
                described.values = FormatNames();
            help.options.push_back(std::move(described));
        }
        commands.push_back(std::move(help));
    }
    return commands;
}

std::vector<HelpTopic> DescribeTopics()
{
    return {{"The external tool", kToolTopic},
            {"The module", kModuleTopic},
            {"Templates", kTemplatesTopic},
            {"Data and messages", kStreamsTopic},
            {"Redaction", RedactedText()},
            {"Exit codes", ExitCodesText()},
            {"Examples", kExamples}};
}
