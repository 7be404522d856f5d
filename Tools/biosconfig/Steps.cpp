#include "Steps.h"

#include "Machine.h"
#include "ModuleWork.h"
#include "Platform.h"
#include "Program.h"
#include "TemporaryFolder.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <exception>

namespace
{

constexpr const char *kWorkerVariable = "BIOSCONFIG_WORKER";

/// A line on a terminal that says what takes its time, and goes again.
class ProgressLine
{
public:
    ProgressLine(const std::string &what, bool isQuiet)
        : m_what(what), m_isShown(!isQuiet && Platform::IsTerminal(stderr) && Platform::EnableEscapeSequences(stderr))
    {
    }
    ~ProgressLine()
    {
        if (m_isDrawn)
            std::fputs("\r\x1b[K", stderr);
    }
    ProgressLine(const ProgressLine &) = delete;
    ProgressLine &operator=(const ProgressLine &) = delete;

    void Show(std::uint32_t seconds)
    {
        if (!m_isShown)
            return;
        std::fprintf(stderr, "\r\x1b[K%s ... %u s", m_what.c_str(), seconds);
        std::fflush(stderr);
        m_isDrawn = true;
    }

private:
    std::string m_what;
    bool m_isShown;
    bool m_isDrawn = false;
};

std::string TextOf(const std::string &path)
{
    std::string text;
    Platform::ReadTextFile(path, text);
    return text;
}

std::string WithoutLineEnd(std::string text)
{
    text.erase(text.find_last_not_of("\r\n") + 1);
    return text;
}

/// Has a worker do `task` and gives its exit code. Throws Failure when the time is up; `what` is what the user is told
/// of.
std::uint32_t RunWorker(const Arguments &arguments, char *const *commandLine, const std::string &task,
                        const std::string &what, std::FILE *output, std::FILE *messages)
{
    Platform::WriteEnvironmentVariable(kWorkerVariable, task);
    Platform::Worker worker(commandLine, output, messages);
    Platform::WriteEnvironmentVariable(kWorkerVariable, "");
    if (!worker)
        throw Failure(ExitCode::Unexpected, "cannot start the process that does the work");
    // Not between messages that come as they are written.
    ProgressLine progress(what, arguments.isQuiet || !messages);
    std::uint32_t exitCode = 0;
    for (std::uint32_t seconds = 1; !worker.Wait(1, exitCode); ++seconds)
    {
        progress.Show(seconds);
        if (seconds != arguments.timeLimit)
            continue;
        worker.End();
        throw Failure(ExitCode::TimedOut, what + " has taken more than " + std::to_string(seconds) +
                                              " s; the external tool was ended, with whatever it had started");
    }
    return exitCode;
}

void RequireNoCrash(std::uint32_t exitCode, const std::string &what)
{
    if (exitCode == Platform::kUnknownExitCode)
        throw Failure(ExitCode::Unexpected, "the process that did the work has crashed (" + what + ")");
}

} // namespace

std::string Steps::Run(const std::string &step, const std::string &argument, const std::string &what,
                       const Output &output, bool showsMessages) const
{
    TemporaryFolder folder;
    const std::string resultPath = folder.PathOf("result");
    const std::string messagesPath = folder.PathOf("messages");
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    std::uint32_t exitCode = 0;
    Platform::MonotonicMilliseconds(start);
    {
        const Platform::StreamOwner result = Platform::CreateStream(resultPath, Platform::FileAccess::OwnerOnly);
        const Platform::StreamOwner messages = Platform::CreateStream(messagesPath, Platform::FileAccess::OwnerOnly);
        if (!result || !messages)
            throw Failure(ExitCode::Unexpected, "cannot write temporary files to " + folder.Prefix());
        exitCode = RunWorker(m_arguments, m_commandLine, step + " " + argument, what, result.get(), messages.get());
    }
    Platform::MonotonicMilliseconds(end);
    output.TellVerbose(what + ": " + std::to_string(end - start) + " ms");
    const bool isDone = exitCode == static_cast<std::uint32_t>(ExitCode::Done);
    // What the tool says may hold values.
    const bool isWanted = !isDone || m_arguments.isVerbose || (showsMessages && !m_arguments.isQuiet);
    if (isWanted && !m_arguments.isRedacted)
        std::fputs(TextOf(messagesPath).c_str(), stderr);
    RequireNoCrash(exitCode, what);
    std::string result = WithoutLineEnd(TextOf(resultPath));
    if (!isDone)
        throw Failure(static_cast<ExitCode>(exitCode), result);
    return result;
}

std::uint32_t RunReportWorker(const Arguments &arguments, char *const *commandLine, std::FILE *output)
{
    const std::string what = "the work";
    const std::uint32_t exitCode =
        RunWorker(arguments, commandLine, std::string(kReportStep) + " ", what, output, nullptr);
    RequireNoCrash(exitCode, what);
    return exitCode;
}

std::string TakeWorkerTask()
{
    std::string task;
    Platform::ReadEnvironmentVariable(kWorkerVariable, task);
    Platform::WriteEnvironmentVariable(kWorkerVariable, "");
    return task;
}

ExitCode DoStep(const Arguments &arguments, const std::string &task)
{
    const std::string step = task.substr(0, task.find(' '));
    const std::string argument = task.substr(std::min(step.size() + 1, task.size()));
    if (step == kReportStep)
        return ReportInWorker(arguments);
    std::string result;
    ExitCode code = ExitCode::Done;
    try
    {
        if (step == kReadStep)
            MakeDump(arguments);
        else if (step == kStatusStep)
            result = AskStatus(arguments);
        else if (step == kProgramStep)
            result = ProgramTemplate(arguments, argument);
        else if (step == kModuleStep)
            result = DescribeModule(arguments, argument);
    }
    catch (const Failure &failure)
    {
        result = failure.what();
        code = failure.code;
    }
    catch (const std::exception &failure)
    {
        result = failure.what();
        code = ExitCode::Unexpected;
    }
    std::printf("%s\n", result.c_str());
    return code;
}
