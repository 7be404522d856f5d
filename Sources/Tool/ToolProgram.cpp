#include "ToolProgram.h"

#include "Platform.h"
#include "TracedBarrier.h"

#include <string_view>
#include <utility>

TraceSource knobLibraryTrace("BiosConfigurationModule", "BIOSConfigurationLib");
std::string toolDirectory;

namespace
{

constexpr const char *kProgramFilesVariable = "ProgramFiles";
constexpr const char *kToolSubdirectory = "\\Quenor Corporation\\Quenor(R) Tarnwell Tool\\SupportedBinaries\\FENRIK\\";
constexpr const char *kToolProgram = "FenrikBinary\\FenrikCmd.exe";
constexpr const char *kOutFolder = "out";

std::string Quoted(const std::string &text)
{
    return '"' + text + '"';
}

Status InitLibrary(FunctionTrace &trace)
{
    std::string directory;
    Status status = GetEnvironmentalVaribaleBiosLib(kProgramFilesVariable, directory);
    if (status != StatusCode::Success)
    {
        trace.Error("biosConfigurationLibInit - GetEnvironmentalVaribaleBiosLib failed\n");
        return trace.LeaveUntraced(status);
    }
    if (Platform::MakeDirectory(directory + kOutFolder) == Platform::DirectoryOutcome::Failed)
        return trace.Fail(StatusCode::Failed, "biosConfigurationLibInit -failed to create Out directory \n");
    trace.Text(TRACE_FAILURE, "biosConfigurationLibInit - Out directory created \n");
    toolDirectory = std::move(directory);
    status = Exec(ToolCommand("fenrikstatus"));
    if (status != StatusCode::Success)
        return trace.Fail(status, "biosConfigurationLibInit - failed to execute the command \n");
    return trace.Done(status);
}

} // namespace

std::string ToolCommand(const std::string &command)
{
    return Quoted(toolDirectory + kToolProgram) + ' ' + command;
}

std::string ToolCommand(const std::string &command, const std::string &file)
{
    return ToolCommand(command) + ' ' + Quoted(file);
}

std::string toolProgram(const std::string &directory)
{
    return directory + kToolProgram;
}

ToolRun runTool(const std::string &directory, const std::string &command, const std::string &file)
{
    ToolRun run;
    const std::string argument = file.empty() ? "" : ' ' + Quoted(file);
    run.isStarted = Platform::RunCommand(Quoted(toolProgram(directory)) + ' ' + command + argument, run.exitCode);
    return run;
}

Status GetEnvironmentalVaribaleBiosLib(std::string variableName, std::string &path)
{
    return WithoutExceptions(
        [&]
        {
            std::string value;
            if (!Platform::ReadEnvironmentVariable(variableName, value))
                return StatusCode::Failed;
            if (variableName == kProgramFilesVariable)
                value += kToolSubdirectory;
            path = std::move(value);
            return StatusCode::Success;
        });
}

Status biosConfigurationLibInit(std::string /*componentName*/, std::string & /*extra*/)
{
    knobLibraryTrace.Open();
    FunctionTrace trace(knobLibraryTrace, "biosConfigurationLibInit", "biosConfigurationLibInit\n");
    return WithoutExceptions(trace, [&] { return InitLibrary(trace); });
}

Status Exec(std::string command)
{
    FunctionTrace trace(knobLibraryTrace, "Exec", "Exec\n");
    return WithoutExceptions(trace,
                             [&]
                             {
                                 std::uint32_t exitCode = 0;
                                 if (!Platform::RunCommand(command, exitCode))
                                     return trace.LeaveUntraced(StatusCode::Failed);
                                 switch (exitCode)
                                 {
                                 case 0:
                                     return trace.Done(StatusCode::Success);
                                 case 1:
                                     return trace.LeaveUntraced(StatusCode::NotFound);
                                 default:
                                     return trace.LeaveUntraced(StatusCode::ToolFailed);
                                 }
                             });
}

bool isPassableToTool(std::string_view path)
{
    constexpr std::string_view kBreaksTheCommandLine("\"\0", 2);
    return path.find_first_of(kBreaksTheCommandLine) == std::string_view::npos;
}

Status getOutFolder(std::string &folder)
{
    return WithoutExceptions(
        [&]
        {
            if (toolDirectory.empty())
                return StatusCode::Missing;
            folder = toolDirectory + kOutFolder + '\\';
            return StatusCode::Success;
        });
}
