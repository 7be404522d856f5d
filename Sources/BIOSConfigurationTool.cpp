#include "BIOSConfigurationTool.h"

#include "BIOSConfigurationLib.h"
#include "DebugTrace.h"
#include "ExceptionBarrier.h"
#include "LowerAscii.h"
#include "Platform.h"

#include <string_view>
#include <utility>

std::string toolDirectory;
DebugHandle_t *libDebugHandle = nullptr;

namespace
{

constexpr const char *kComponentName = "BiosConfigurationModule";
constexpr const char *kProgramFilesVariable = "ProgramFiles";
constexpr const char *kToolSubdirectory = "\\Quenor Corporation\\Quenor(R) Tarnwell Tool\\SupportedBinaries\\FENRIK\\";
constexpr const char *kToolProgram = "FenrikBinary\\FenrikCmd.exe";
constexpr const char *kOutFolder = "out";
constexpr const char *kKnobFileExtension = "ini";

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

Status ProgramKnobs(const std::string &knobFile, FunctionTrace &trace)
{
    if (!HasIniExtension(knobFile))
        return trace.Fail(StatusCode::Failed, "writeKnob - failed , Improper file format provided \n");
    if (!isPassableToTool(knobFile))
        return trace.Fail(StatusCode::Failed, "writeKnob - failed , the path cannot be passed to the tool \n");
    const Status status = Exec(ToolCommand("progknobsfromfile", knobFile));
    if (status != StatusCode::Success)
        return trace.Fail(status, "writeKnob - failed to execute the command \n");
    return trace.Done(status);
}

/// The library's opens of its handle, which are given back when it is unloaded.
struct HandleOpens
{
    ~HandleOpens()
    {
        for (; count > 0; --count)
            UnInitDebugHandle(libDebugHandle);
    }

    std::uint32_t count = 0;
};

HandleOpens handleOpens;

/// Opens the library's handle once more; it keeps the one it has where that fails. A handle counts to 65535, so a host
/// that asks for more reports than that gets no further opens counted.
void OpenLibraryHandle()
{
    constexpr std::uint32_t kMostOpens = 60000;
    if (handleOpens.count == kMostOpens)
        return;
    DebugHandle_t *handle = nullptr;
    if (InitDebugHandle(kComponentName, &handle) != StatusCode::Success)
        return;
    libDebugHandle = handle;
    ++handleOpens.count;
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

bool HasIniExtension(const std::string &fileName)
{
    const std::size_t dot = fileName.rfind('.');
    return dot == std::string::npos || LowerAscii(fileName.substr(dot + 1)) == kKnobFileExtension;
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
    OpenLibraryHandle();
    FunctionTrace trace(libDebugHandle, kKnobLibrarySource, "biosConfigurationLibInit", "biosConfigurationLibInit\n");
    return WithoutExceptions(trace, [&] { return InitLibrary(trace); });
}

Status Exec(std::string command)
{
    FunctionTrace trace(libDebugHandle, kKnobLibrarySource, "Exec", "Exec\n");
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

Status writeKnob(std::string knobFile)
{
    FunctionTrace trace(libDebugHandle, kKnobLibrarySource, "writeKnob", "writeKnob\n");
    return WithoutExceptions(trace, [&] { return ProgramKnobs(knobFile, trace); });
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
