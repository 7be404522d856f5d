#pragma once

#include "BiosConfigModule.h"
#include "Platform.h"
#include "TestSupport.h"
#include "TraceLog.h"

#include <filesystem>
#include <regex>
#include <string>
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

} // namespace TestSupport
