#pragma once

#include "BiosConfigModule.h"
#include "DebugTrace.h"
#include "KnobList.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

class ModuleDataWriter;

/// Group name to the row texts of the group, in byte-wise order of the names.
using GroupMap = std::map<std::string, std::vector<std::string>, std::less<>>;

/// The module object. Used from one thread at a time; has no lock of its own.
class BiosConfigModule : public BaseModule, public BaseAbstraction
{
public:
    BiosConfigModule();
    ~BiosConfigModule() override;
    BiosConfigModule(const BiosConfigModule &) = delete;
    BiosConfigModule &operator=(const BiosConfigModule &) = delete;

    // BaseModule
    Status InitModule(std::vector<Cap *> &caps, ParameterMap params) override;
    Status UnInitModule() override;
    std::string GetModuleName() override;
    Status GetData(const char *name, const OutputKind *kind, std::string *buffer) override;

    // BaseAbstraction
    Status Initialize() override;
    Status UnInitialize() override;
    Status GetItemByName(std::string name) override;
    Status GetNextItem() override;

    /// Turns the knobs into rows of four quoted cells (name, value, prompt, description) and files each under the first
    /// part of its setup page. Returns Success, or NoMemory.
    Status PrintDataToVector();

    /// Whether a row is a group heading, that is, holds the group marker; then `row` becomes the heading: what stands
    /// before the marker, without its first character. An empty row is none and is reported.
    bool IsGroupName(std::string &row);

    /// Writes the knob file of a text template: "[BiosKnobs]" and one line "name==value" per assignment, in byte-wise
    /// order of the names, lines ended by CR LF. The text of an option becomes its value where the object holds the
    /// knob. A template that is missing has no assignments. A file at `knobFile` is replaced as a whole
    /// (WriteKnobFile). Returns Success; Failed, recorded, when a template that is there cannot be read or the knob
    /// file cannot be written; NoMemory.
    Status ParseBkcTemplate(std::string templatePath, const std::string &knobFile);

    /// The work of UpdateBiosSettings, on a fresh object, for a template of one of the two kinds.
    Status UpdateSettings(const std::string &templatePath, std::string &message, ParameterMap params);

private:
    friend struct BiosConfigModuleInspector; // the tests' view of the fields

    // The steps of GetData.
    struct Request;
    void MakeReport(Request &request, const std::string &name, OutputKind kind);
    bool WriteReport(Request &request, ModuleDataWriter &writer);
    bool StartReport(Request &request, ModuleDataWriter &writer);
    Status ReadKnobs(Request &request);
    Status AddGroups(Request &request, ModuleDataWriter &writer);
    Status AddGroup(Request &request, ModuleDataWriter &writer, const std::string &name,
                    std::vector<std::string> &rows);

    Status ProgramTemplate(const std::string &templatePath);

    std::string m_toolXmlPath;
    KnobList m_knobs;
    TraceSource m_debugHandle{"BiosConfigModule", "BiosConfiguration"};
    std::uint32_t m_itemIndex = 0;
    GroupMap m_groups;
};

/// What the last reading of the capability list gave; of equal length. They live as long as the loaded module.
extern std::vector<std::string> capabilityNames;
extern std::vector<std::string> capabilityDescriptions;
