#include "Arguments.h"

#include "BiosConfigModule.h"
#include "Platform.h"

#include <CLI/CLI.hpp>
#include <string_view>
#include <vector>

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

constexpr const char *kEnvironmentHelp = R"(
The module runs an external tool that it finds through the environment variable ProgramFiles, or through
--program-files:
  <ProgramFiles>/Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK/FenrikBinary/FenrikCmd.exe
In the tool directory it reads CapsList.json and records errors in Error.xml; a copy of each report goes into
the folder ModuleData there, if that folder exists.

Traces are switched on by a file debug.conf in the working directory. What an update has programmed takes
effect when the machine is restarted.

Data and the outcome of an update go to standard output; messages, traces and, but on Windows, what the
external tool prints go to standard error.
)";

constexpr const char *kExampleHelp = R"(
Examples:
  biosconfig report --program-files /opt/programs --tool-dir /opt/tarnwell --format ui-xml -o bios.xml
  biosconfig update --program-files /opt/programs --tool-dir /opt/tarnwell lab/bench.txt)";

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

std::string Footer()
{
    std::string footer = kEnvironmentHelp;
    footer += "\nExit codes:\n";
    for (const ExitCodeMeaning &meaning : kExitCodeMeanings)
        footer += "  " + std::to_string(static_cast<int>(meaning.code)) + "  " + meaning.text + "\n";
    return footer + kExampleHelp;
}

void AddCommonOptions(CLI::App &command, Arguments &parsed)
{
    command
        .add_option("--tool-dir", parsed.toolDirectory,
                    "The host's tool directory; a final separator is added when it is missing")
        ->envname("BIOSCONFIG_TOOL_DIR")
        ->type_name("DIR")
        ->capture_default_str();
    command
        .add_option("--module", parsed.modulePath,
                    "The module's file; without it the one beside this program or in " BIOSCONFIG_LIBRARY_PLACE)
        ->envname("BIOSCONFIG_MODULE")
        ->type_name("FILE");
    command
        .add_option("--program-files", parsed.programFiles,
                    "Where the external tool is installed, in the place of the environment variable ProgramFiles")
        ->envname("BIOSCONFIG_PROGRAM_FILES")
        ->type_name("DIR");
    command
        .add_option("--timeout", parsed.timeLimit,
                    "After how many seconds to give up: the external tool is ended then, with whatever it has started; "
                    "without it the tool has all the time that it takes")
        ->envname("BIOSCONFIG_TIMEOUT")
        ->check(CLI::Range(1, kLongestTimeLimit))
        ->type_name("SECONDS");
}

void AddReportOptions(CLI::App &report, Arguments &parsed)
{
    report.add_option("--format", parsed.formatName, "The format of the report")
        ->envname("BIOSCONFIG_FORMAT")
        ->check(CLI::IsMember(FormatNames()))
        ->type_name("NAME")
        ->capture_default_str();
    report.add_option("--option", parsed.option, "A capability's name, or \"all\" for the first one")
        ->type_name("NAME")
        ->capture_default_str();
    report
        .add_option("-o,--output", parsed.outputPath,
                    "Where the report goes, \"-\" is standard output; an existing file is replaced in one step, and "
                    "only when the exit code is 0 or 6")
        ->type_name("FILE")
        ->capture_default_str();
}

void AddUpdateArgument(CLI::App &update, Arguments &parsed)
{
    update
        .add_option("TEMPLATE", parsed.templatePath,
                    "The template: a list of assignments (txt) or a knob file (ini). What stands behind the first "
                    "\".\" of its name says which")
        ->required()
        ->type_name("");
}

std::string DefaultModulePath()
{
    std::string beside = Platform::ExecutableDirectory() + Platform::SharedLibraryFileName(BIOS_CONFIG_MODULE_STEM);
    if (Platform::OpenStream(beside, "rb"))
        return beside;
    return Platform::ExecutableDirectory() + BIOSCONFIG_LIBRARY_PLACE "/" +
           Platform::SharedLibraryFileName(BIOS_CONFIG_MODULE_STEM);
}

} // namespace

std::optional<Arguments> ParseArguments(int argumentCount, const char *const *arguments, ExitCode &exitCode)
{
    Arguments parsed;
    CLI::App app("Makes reports of this machine's BIOS options, and updates them, with the BIOS configuration module.",
                 "biosconfig");
    app.footer(Footer());
    app.set_version_flag("--version", "biosconfig " BIOSCONFIG_VERSION);
    app.allow_windows_style_options(false); // a path may begin with "/"
    app.require_subcommand(1);
    CLI::App *const report = app.add_subcommand("report", "Makes a report and prints it");
    AddCommonOptions(*report, parsed);
    AddReportOptions(*report, parsed);
    CLI::App *const capabilities =
        app.add_subcommand("capabilities", "Prints one capability per line: name, tab, description");
    AddCommonOptions(*capabilities, parsed);
    CLI::App *const update =
        app.add_subcommand("update", "Has the BIOS options programmed that a template assigns, and prints the outcome");
    AddCommonOptions(*update, parsed);
    AddUpdateArgument(*update, parsed);

    try
    {
        app.parse(argumentCount, arguments);
    }
    catch (const CLI::ParseError &end)
    {
        exitCode = app.exit(end) == 0 ? ExitCode::Success : ExitCode::WrongUsage;
        return std::nullopt;
    }
    if (*capabilities)
        parsed.command = Arguments::Command::Capabilities;
    if (*update)
        parsed.command = Arguments::Command::Update;
    if (parsed.modulePath.empty())
        parsed.modulePath = DefaultModulePath();
    parsed.format = KindOf(parsed.formatName);
    return parsed;
}
