#include "Steps.h"

#include "Machine.h"
#include "ModuleWork.h"
#include "Platform.h"
#include "Program.h"
#include "TemporaryFolder.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

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
        const Platform::StreamOwner result = Platform::CreateStream(resultPath);
        const Platform::StreamOwner messages = Platform::CreateStream(messagesPath);
        if (!result || !messages)
            throw Failure(ExitCode::Unexpected, "cannot write temporary files to " + folder.Prefix());
        Platform::WriteEnvironmentVariable(kWorkerVariable, step + " " + argument);
        Platform::Worker worker(m_commandLine, result.get(), messages.get());
        Platform::WriteEnvironmentVariable(kWorkerVariable, "");
        if (!worker)
            throw Failure(ExitCode::Unexpected, "cannot start the process that does the work");
        ProgressLine progress(what, m_arguments.isQuiet);
        for (std::uint32_t seconds = 1; !worker.Wait(1, exitCode); ++seconds)
        {
            progress.Show(seconds);
            if (seconds != m_arguments.timeLimit)
                continue;
            worker.End();
            throw Failure(ExitCode::TimedOut, what + " has taken more than " + std::to_string(seconds) +
                                                  " s; the external tool was ended, with whatever it had started");
        }
    }
    Platform::MonotonicMilliseconds(end);
    output.TellVerbose(what + ": " + std::to_string(end - start) + " ms");
    const bool isDone = exitCode == static_cast<std::uint32_t>(ExitCode::Done);
    // What the tool says may hold values.
    const bool isWanted = !isDone || m_arguments.isVerbose || (showsMessages && !m_arguments.isQuiet);
    if (isWanted && !m_arguments.isRedacted)
        std::fputs(TextOf(messagesPath).c_str(), stderr);
    if (exitCode == Platform::kUnknownExitCode)
        throw Failure(ExitCode::Unexpected, "the process that did the work has crashed (" + what + ")");
    std::string result = WithoutLineEnd(TextOf(resultPath));
    if (!isDone)
        throw Failure(static_cast<ExitCode>(exitCode), result);
    return result;
}

std::uint32_t RunReportWorker(const Arguments &arguments, char *const *commandLine, std::FILE *output)
{
    Platform::WriteEnvironmentVariable(kWorkerVariable, std::string(kReportStep) + " ");
    Platform::Worker worker(commandLine, output);
    Platform::WriteEnvironmentVariable(kWorkerVariable, "");
    if (!worker)
        throw Failure(ExitCode::Unexpected, "cannot start the process that does the work");
    std::uint32_t exitCode = 0;
    if (!worker.Wait(arguments.timeLimit, exitCode))
    {
        worker.End();
        throw Failure(ExitCode::TimedOut, "the work has taken more than " + std::to_string(arguments.timeLimit) +
                                              " s; the external tool was ended, with whatever it had started");
    }
    if (exitCode == Platform::kUnknownExitCode)
        throw Failure(ExitCode::Unexpected, "the process that did the work has crashed");
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
    std::printf("%s\n", result.c_str());
    return code;
}
