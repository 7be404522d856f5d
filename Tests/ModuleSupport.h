#pragma once

#include "BiosConfigModule.h"
#include "DebugHandle.h"
#include "Platform.h"
#include "TestSupport.h"

#include <cstdarg>
#include <cstring>
#include <filesystem>
#include <regex>
#include <string>
#include <utility>
#include <vector>

namespace TestSupport
{

constexpr const char *kOneCapability =
    R"({"Tarnwell": {"CapabilityList": {"BIOS Options": [{"Name": "Bios", "Description": "All BIOS options"}]}}})";

/// The machine that a module finds: the host's tool directory and the installed external tool, whose part the stand-in
/// plays. One for the whole process, because a module keeps its error file for as long as it is loaded.
class Machine
{
public:
    /// The machine, as if freshly installed.
    static Machine &Fresh()
    {
        static Machine machine;
        machine.Reinstall();
        return machine;
    }

    /// The host's tool directory with its final separator, as on Windows; and the path of a file in it.
    std::string HostDirectory() const { return m_root.Path("host (\xE4)\\"); }
    std::string HostFile(const std::string &name) const { return m_root.Path("host (\xE4)/" + name); }
    /// The path of a file in the external tool's directory.
    std::string ToolFile(const std::string &name) const { return m_root.Path(kToolPlace + name); }
    std::string ToolProgram() const { return ToolFile("FenrikBinary/FenrikCmd.exe"); }

    /// From now on the tool only ends with exit code 0 and leaves this dump as it is.
    void UseDump(const std::string &dump)
    {
        WriteFile(ToolFile("FenrikOutput.xml"), dump);
        m_fault.emplace_back("FENRIKCMD_FAULT", "exit:0");
    }

    /// From now on the tool misbehaves in this way; empty: it works.
    void UseFault(const std::string &fault) { m_fault.emplace_back("FENRIKCMD_FAULT", fault); }

    /// The entries of the error file, each as "message / title".
    std::vector<std::string> Errors() const
    {
        if (!std::filesystem::exists(HostFile("Error.xml")))
            return {};
        const std::string text = ReadFile(HostFile("Error.xml"));
        const std::regex entry("<Error><Message Name=\"([^\"]*)\" Description=\"([^\"]*)\"/>");
        std::vector<std::string> errors;
        for (std::sregex_iterator match(text.begin(), text.end(), entry), end; match != end; ++match)
            errors.push_back((*match)[1].str() + " / " + (*match)[2].str());
        return errors;
    }

private:
    static constexpr const char *kToolPlace =
        "Program Files \xE4/Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK/";

    void Reinstall()
    {
        namespace fs = std::filesystem;
        m_fault.clear();
        fs::remove_all(m_root.Path("host (\xE4)"));
        fs::remove_all(m_root.Path("Program Files \xE4"));
        fs::create_directories(HostFile("ModuleData"));
        WriteFile(HostFile("CapsList.json"), kOneCapability);
        fs::create_directories(ToolFile("FenrikBinary"));
        fs::copy_file(FENRIKCMD_PROGRAM, ToolProgram());
    }

    TemporaryDirectory m_root;
    EnvironmentSetting m_programFiles{"ProgramFiles", m_root.Path("Program Files \xE4")};
    std::deque<EnvironmentSetting> m_fault;
};

/// Initialises `module` with the machine's tool directory and drops the capabilities that it offers.
inline Status InitModule(BaseModule &module, const Machine &machine)
{
    std::vector<Cap *> caps;
    const Status status = module.InitModule(caps, {{"toolxmlpath", machine.HostDirectory()}});
    for (const Cap *cap : caps)
        delete cap;
    return status;
}

/// Everything that one component traces while the object lives: level tags, function and message of each line, as
/// " <--  Fn:readKnob readKnob\n". With TRACE_ERROR the lines of errors alone, also with the tag of a way out.
class TraceLog
{
public:
    explicit TraceLog(const char *componentName, std::uint64_t levels = TRACE_ALL)
    {
        Lines().clear();
        EXPECT_EQ(InitDebugHandle(componentName, &m_handle), StatusCode::Success);
        m_before = *m_handle;
        m_handle->traceType = levels == TRACE_ERROR ? std::uint64_t{TRACE_FAILURE} : levels;
        m_errorsOnly = levels == TRACE_ERROR;
        m_handle->traceFormat = FORMAT_TAGS | FORMAT_FUNCTION;
        m_handle->consolePrint = Collect;
    }
    ~TraceLog()
    {
        m_handle->traceType = m_before.traceType;
        m_handle->traceFormat = m_before.traceFormat;
        m_handle->consolePrint = m_before.consolePrint;
        UnInitDebugHandle(m_handle);
    }
    TraceLog(const TraceLog &) = delete;
    TraceLog &operator=(const TraceLog &) = delete;

    /// The lines since the last call.
    static std::vector<std::string> Take() { return std::exchange(Lines(), {}); }

private:
    static std::vector<std::string> &Lines()
    {
        static std::vector<std::string> lines;
        return lines;
    }

    static int Collect(const char *format, ...)
    {
        char text[1024];
        std::va_list arguments;
        va_start(arguments, format);
        const int length = std::vsnprintf(text, sizeof text, format, arguments);
        va_end(arguments);
        if (!m_errorsOnly || std::strstr(text, " **ERROR** "))
            Lines().emplace_back(text + 1); // without the line break in front
        return length;
    }

    static inline bool m_errorsOnly = false;
    DebugHandle_t *m_handle = nullptr;
    DebugHandle_t m_before;
};

} // namespace TestSupport
