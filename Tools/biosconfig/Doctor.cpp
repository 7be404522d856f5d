#include "Commands.h"
#include "DebugConfCheck.h"
#include "ErrorFileWatch.h"
#include "FilesystemPath.h"
#include "KnobDump.h"
#include "ModuleWork.h"
#include "Platform.h"
#include "Program.h"
#include "ReplacedFile.h"
#include "ToolProgram.h"

#include <chrono>
#include <filesystem>

namespace
{

namespace fs = std::filesystem;

enum class Health
{
    Good,
    Note,
    Bad
};

/// In the order of Health.
struct HealthWord
{
    const char *word;
    Look look;
};
constexpr HealthWord kHealthWords[] = {{"ok", Look::Good}, {"note", Look::Warning}, {"FAIL", Look::Bad}};

bool Exists(const std::string &path)
{
    std::error_code error;
    return fs::exists(Platform::ToFilesystemPath(path), error);
}

std::string AgeOf(const std::string &path)
{
    std::error_code error;
    const fs::file_time_type written = fs::last_write_time(Platform::ToFilesystemPath(path), error);
    if (error)
        return "of unknown age";
    constexpr long long kSecondsPerMinute = 60;
    constexpr long long kMinutesPerHour = 60;
    constexpr long long kHoursPerDay = 24;
    const long long seconds =
        std::chrono::duration_cast<std::chrono::seconds>(fs::file_time_type::clock::now() - written).count();
    const long long minutes = seconds / kSecondsPerMinute;
    if (minutes < 1)
        return "less than a minute old";
    const long long hours = minutes / kMinutesPerHour;
    if (hours < 1)
        return std::to_string(minutes) + " min old";
    return hours < kHoursPerDay ? std::to_string(hours) + " h old" : std::to_string(hours / kHoursPerDay) + " days old";
}

/// One examination; every check adds what it has found.
class Examination
{
public:
    explicit Examination(const Work &work) : m_work(work) {}

    ExitCode Run()
    {
        if (m_work.output.IsJson())
            m_work.output.StartArray("checks");
        CheckModule();
        CheckTool();
        CheckDump();
        if (m_canRead)
            CheckReading();
        CheckToolDirectory();
        CheckDebugConfiguration();
        if (m_work.output.IsJson())
            m_work.output.EndArray();
        return m_worst;
    }

private:
    /// `remedy` is empty where nothing is to be mended.
    void Add(const char *check, Health health, const std::string &detail, const std::string &remedy = "")
    {
        Output &output = m_work.output;
        const HealthWord &word = kHealthWords[static_cast<std::size_t>(health)];
        if (output.IsJson())
        {
            json found = {
                {"check", check}, {"verdict", health == Health::Bad ? "fail" : word.word}, {"detail", detail}};
            if (!remedy.empty())
                found["remedy"] = remedy;
            return output.AddElement(found);
        }
        constexpr std::size_t kWordColumns = 6;
        const std::string blanks(kWordColumns - std::string_view(word.word).size(), ' ');
        output.Add(output.Reader().Style(word.look, word.word) + blanks + check + ": " + OneLine(detail) + "\n");
        if (!remedy.empty())
            output.Add(std::string(kWordColumns, ' ') + "-> " + OneLine(remedy) + "\n");
    }

    void AddBad(const char *check, const std::string &detail, const std::string &remedy, ExitCode code)
    {
        Add(check, Health::Bad, detail, remedy);
        m_worst = m_worst == ExitCode::Done ? code : m_worst;
    }

    void CheckModule()
    {
        if (!Exists(m_work.arguments.modulePath))
            return AddBad("module", "there is no " + m_work.arguments.modulePath,
                          "install the module beside this program, or say with --module where it is",
                          ExitCode::NotFound);
        try
        {
            TemporaryFolder folder;
            Add("module", Health::Good,
                m_work.steps.Run(kModuleStep, MakeModulePlace(folder), "loading the module", m_work.output) +
                    "; it comes with this program, " BIOSCONFIG_VERSION ", unless --module names another");
        }
        catch (const Failure &failure)
        {
            AddBad("module", failure.what(), "install module and program of one version and build", failure.code);
        }
    }

    void CheckTool()
    {
        try
        {
            m_toolPlace = ToolPlace(m_work.arguments);
        }
        catch (const Failure &failure)
        {
            return AddBad("ProgramFiles", "the environment variable is not set",
                          "set it, or give --program-files: the folder that holds \"Quenor Corporation\"",
                          failure.code);
        }
        std::string value;
        Platform::ReadEnvironmentVariable("ProgramFiles", value);
        Add("ProgramFiles", Health::Good, value);
        const std::string program = ShownPath(toolProgram(m_toolPlace));
        if (!Exists(program))
            return AddBad("external tool", "there is no " + program,
                          "install it there, or say with --program-files where it is installed", ExitCode::NoTool);
        if (!Platform::IsExecutable(program))
            return AddBad("external tool", program + " is not executable", "give it the permission (chmod +x)",
                          ExitCode::NoTool);
        Add("external tool", Health::Good, program);
        CheckStatus();
    }

    static const char *RemedyOf(ExitCode code)
    {
        switch (code)
        {
        case ExitCode::TimedOut:
            return "see what the tool waits for; a longer --timeout may do";
        case ExitCode::NotPermitted:
            return "what the tool said is above; enable the interface in the BIOS setup, and run this with the rights "
                   "that "
                   "the tool asks for";
        case ExitCode::NoTool:
            return "install the external tool anew; what is there is no program for this machine";
        default:
            return "what the tool said is above; where that does not help, install the external tool anew";
        }
    }

    /// Has a new dump made and read, as every other command does.
    void CheckReading()
    {
        try
        {
            const LoadedOptions options = ReadMachine(m_work.arguments, m_work.steps, m_work.output);
            if (options.isDamaged)
                return AddBad("reading", "a new dump is damaged", RemedyOf(ExitCode::ToolFailed), ExitCode::InPart);
            Add("reading", Health::Good, std::to_string(options.table.Options().size()) + " options in a new dump");
        }
        catch (const Failure &failure)
        {
            AddBad("reading", failure.what(), RemedyOf(failure.code), failure.code);
        }
    }

    void CheckStatus()
    {
        try
        {
            Add("BIOS interface", Health::Good,
                m_work.steps.Run(kStatusStep, "", "asking the external tool for its status", m_work.output));
            m_canRead = true;
        }
        catch (const Failure &failure)
        {
            AddBad("BIOS interface", failure.what(), RemedyOf(failure.code), failure.code);
        }
    }

    void CheckDump()
    {
        if (m_toolPlace.empty())
            return;
        const std::string dump = ShownPath(toolDumpFile(m_toolPlace));
        if (!Exists(dump))
            return Add("last dump", Health::Note, "there is none yet, " + dump);
        KnobList knobs;
        FurtherDetails further;
        std::int32_t damagedLine = 0;
        const DumpOutcome outcome = readDump(dump, knobs, further, damagedLine);
        const std::string size = std::to_string(knobs.Size()) + " options, " + AgeOf(dump);
        if (outcome != DumpOutcome::Read)
            Add("last dump", Health::Note, dump + " cannot be read, or holds no options",
                "the next line tells of a new one");
        else if (damagedLine != 0)
            Add("last dump", Health::Note, dump + ": " + size + ", damaged in line " + std::to_string(damagedLine),
                "the next line tells of a new one");
        else
            Add("last dump", Health::Good, dump + ": " + size);
    }

    void CheckToolDirectory()
    {
        const bool isNamed = !m_work.arguments.toolDirectory.empty();
        const std::string directory = isNamed ? m_work.arguments.toolDirectory : ".";
        if (!isNamed && !Exists("CapsList.json"))
            return Add("tool directory", Health::Note, "none is named, and the current one is none",
                       "only \"report\" and \"capabilities\" need one: name it with --tool-dir");
        if (!Platform::IsDirectory(directory))
            return AddBad("tool directory", "there is no " + directory, "name the host's with --tool-dir",
                          ExitCode::NotFound);
        const std::string prefix = Platform::AsPrefix(directory);
        if (!Platform::ReplacedFile(prefix + "Error.xml.trial").Open())
            AddBad("tool directory", directory + " cannot be written",
                   "let this user write there; the module records its errors in Error.xml", ExitCode::NotPermitted);
        else
            Add("tool directory", Health::Good, directory + " can be written");
        if (!Exists(prefix + "CapsList.json"))
            AddBad("CapsList.json", "there is none in " + directory,
                   "copy the host's there; the module's documentation has an example (Docs/Example)",
                   ExitCode::NotFound);
        else if (!IsJson(prefix + "CapsList.json"))
            AddBad("CapsList.json", prefix + "CapsList.json is no JSON", "copy the host's there anew",
                   ExitCode::NotValid);
        else
            Add("CapsList.json", Health::Good, prefix + "CapsList.json");
        CheckErrorFile(prefix + "Error.xml");
    }

    void CheckErrorFile(const std::string &path)
    {
        const std::vector<RecordedError> errors = ReadRecordedErrors(path);
        if (errors.empty())
            return Add("Error.xml", Health::Good, "no errors are recorded");
        const RecordedError &last = errors.back();
        Add("Error.xml", Health::Note,
            std::to_string(errors.size()) + " recorded, the last one: " + last.message + " (" + last.title + "), " +
                last.time);
    }

    void CheckDebugConfiguration()
    {
        if (!Exists("debug.conf"))
            return Add("debug.conf", Health::Good, "there is none in the working directory: no traces");
        std::vector<std::string> faults = CheckDebugConf();
        const std::vector<std::string> useless = UselessDebugConfSettings();
        faults.insert(faults.end(), useless.begin(), useless.end());
        if (ReadFirstBytes("debug.conf") == Platform::kByteOrderMark)
            faults.emplace_back("it begins with a byte-order mark, which is passed over");
        if (faults.empty())
            return Add("debug.conf", Health::Good, "in force");
        for (const std::string &fault : faults)
            Add("debug.conf", Health::Note, fault, "see the documentation of traces, Docs/Diagnostics.md");
    }

    static bool IsJson(const std::string &path)
    {
        std::string text;
        return Platform::ReadTextFile(path, text) && json::accept(text);
    }

    static std::string ReadFirstBytes(const std::string &path)
    {
        const Platform::StreamOwner stream = Platform::OpenStream(path, "rb");
        char bytes[3] = {};
        const std::size_t count = stream ? std::fread(bytes, 1, sizeof bytes, stream.get()) : 0;
        return {bytes, count};
    }

    const Work &m_work;
    std::string m_toolPlace;
    /// The tool answers.
    bool m_canRead = false;
    ExitCode m_worst = ExitCode::Done;
};

} // namespace

ExitCode Doctor(const Work &work)
{
    return Examination(work).Run();
}
