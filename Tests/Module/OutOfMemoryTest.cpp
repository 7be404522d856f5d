#include "BiosConfiguration.h"
#include "ErrorFile.h"
#include "FailingAllocation.h"
#include "ModuleSupport.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <libxml/xmlerror.h>
#include <memory>

namespace
{

using TestSupport::Machine;
using Lines = std::vector<std::string>;

/// What the host sees of a request.
struct Seen
{
    Status status = StatusCode::Failed;
    /// Of the report, the capabilities or the programmed options.
    std::size_t hash = 0;
    Lines entries = {};

    bool operator==(const Seen &) const = default;
};

/// A request, and what is to be looked at when memory is back.
struct Request
{
    virtual ~Request() = default;
    virtual void Prepare() {}
    virtual Status Make() = 0;
    virtual std::string Data() = 0;
    virtual void Forget() = 0;
    /// Whether every failure of this request has an entry.
    virtual bool HasEntries() const { return true; }
};

struct Initialisation : Request
{
    void Prepare() override { parameters = {{"toolxmlpath", machine.HostDirectory()}}; }
    Status Make() override { return module.InitModule(caps, std::move(parameters)); }
    std::string Data() override { return std::to_string(caps.size()) + (caps.empty() ? "" : caps[0]->names[0]); }
    void Forget() override
    {
        for (const Cap *cap : caps)
            delete cap;
        caps = {};
        parameters = {};
    }
    bool HasEntries() const override { return false; } // the place of the error file is among what it is given

    Machine &machine = Machine::Fresh();
    BiosConfigModule module;
    ParameterMap parameters;
    std::vector<Cap *> caps;
};

struct Report : Request
{
    explicit Report(OutputKind wanted,
                    const std::string &dump = TestSupport::ReadFile(TEST_DATA_DIRECTORY "SmallFirmware.xml"))
        : kind(wanted)
    {
        machine.UseDump(dump);
        EXPECT_EQ(TestSupport::InitModule(module, machine), StatusCode::Success);
    }
    Status Make() override { return module.GetData("all", &kind, &report); }
    std::string Data() override { return report; }
    void Forget() override { report = {}; }

    Machine &machine = Machine::Fresh();
    BiosConfigModule module;
    OutputKind kind;
    std::string report;
};

struct Update : Request
{
    Update() { TestSupport::WriteFile(machine.HostFile("t.txt"), "BootFast=Enabled;BootMode=Legacy"); }
    void Prepare() override
    {
        std::filesystem::remove(firmware);
        std::filesystem::remove_all(machine.ToolFile("out"));
        parameters = {{"toolxmlpath", machine.HostDirectory()}};
        path = machine.HostFile("t.txt");
    }
    Status Make() override { return UpdateBiosSettings(std::move(path), message, std::move(parameters)); }
    std::string Data() override
    {
        const std::string options = std::filesystem::exists(firmware) ? TestSupport::ReadFile(firmware) : "";
        return message + (options.find("\"Legacy\"") == std::string::npos ? "" : " (programmed)");
    }
    void Forget() override
    {
        for (std::string *text : {&path, &message})
            *text = {};
        parameters = {};
    }
    bool HasEntries() const override { return false; }

    Machine &machine = Machine::Fresh();
    std::string firmware = machine.ToolFile("FenrikBinary/FenrikFirmware.json");
    ParameterMap parameters;
    std::string path;
    std::string message;
};

struct FailureEntry : Request
{
    FailureEntry() { InitErrorFile(machine.HostDirectory().c_str(), "Error.xml"); }
    Status Make() override { return ReportError("Message", "Title", "Source", "1", "Date"); }
    std::string Data() override { return {}; }
    void Forget() override {}
    bool HasEntries() const override { return false; } // it is the entry
    Machine &machine = Machine::Fresh();
};

constexpr const char *kEarlierFile =
    "<?xml version=\"1.0\"?>\n<Tool Name=\"Tarnwell\"><Error><Message Name=\"Earlier\" "
    "Description=\"entry\"/></Error></Tool>\n";
constexpr const char *kEarlier = "Earlier / entry";

/// Runs the request with the allocation number `point` failing, alone or with all behind it.
Seen Run(Request &request, Machine &machine, long point, bool once)
{
    TestSupport::WriteFile(machine.HostFile("Error.xml"), kEarlierFile);
    request.Prepare();
    Seen seen;
    seen.status = WithoutMemory(
        point, [&] { return request.Make(); }, once);
    seen.hash = std::hash<std::string>()(request.Data());
    request.Forget();
    seen.entries = machine.Errors();
    return seen;
}

/// What a request that succeeds leaves behind, and all before it.
long BlocksBehind(Request &request, Machine &machine)
{
    Run(request, machine, -1, false);
    xmlResetLastError();
    return liveBlocks;
}

void Check(const Seen &seen, const Seen &whole, bool wantsEntry)
{
    ASSERT_FALSE(seen.entries.empty());
    EXPECT_EQ(seen.entries[0], kEarlier);
    const bool isWhole =
        seen.status == StatusCode::Success && seen.hash == whole.hash && seen.entries.size() >= whole.entries.size();
    const std::size_t fewer = seen.status == StatusCode::Success ? whole.entries.size() : wantsEntry ? 1 : 0;
    EXPECT_TRUE(isWhole || seen.entries.size() > fewer) << seen.status;
}

/// Runs it with each `step`-th allocation failing in turn. Whatever the host gets is whole or it is told; nothing that
/// was recorded earlier is lost; nothing is kept.
template <typename Wanted, typename... Arguments>
void Sweep(const char *what, Arguments &&...arguments)
{
    const char *const wanted = std::getenv("SWEEP_STEP"); // 1: all of them
    const long step = wanted ? std::atol(wanted) : SWEEP_STEP;
    Wanted request(std::forward<Arguments>(arguments)...);
    Machine &machine = request.machine;
    {
        SCOPED_TRACE("fills what the libraries keep");
        Run(request, machine, -1, false);
        Run(request, machine, 0, false);
        ReportError("Message", "Title", "Source", "1", "Date");
    }
    const Seen whole = Run(request, machine, -1, false);
    ASSERT_EQ(whole.status, StatusCode::Success);
    request.Prepare();
    const long count = CountAllocations([&] { request.Make(); });
    request.Forget();
    std::printf("%s: every allocation number %ld of %ld fails\n", what, step, count);
    EXPECT_GT(count, 10);
    const long kept = BlocksBehind(request, machine);
    for (const bool once : {true, false})
    {
        for (long point = 0; point < count; point += step)
        {
            SCOPED_TRACE(std::string(what) + (once ? ", once" : ", from then on") + ", point " + std::to_string(point));
            Check(Run(request, machine, point, once), whole, once && request.HasEntries());
        }
    }
    if (!testing::Test::HasFailure()) // a failure is kept, too
    {
        EXPECT_EQ(BlocksBehind(request, machine), kept);
    }
}

TEST(OutOfMemory, GivesNoModuleOrAWholeOne)
{
    long succeeding = 0;
    BaseModule *module = nullptr;
    for (; !module && succeeding < 1000; ++succeeding)
        module = WithoutMemory(succeeding, CreateBiosConfigModule);
    EXPECT_GT(succeeding, 1);
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(module->GetModuleName(), "BIOS Options");
    DestroyBiosConfigModule(module);
}

TEST(OutOfMemory, IsToldByAnInitialisation)
{
    Sweep<Initialisation>("InitModule");
}

TEST(OutOfMemory, IsToldByAReport)
{
    Sweep<Report>("UI XML", OutputKind::UiXml);
    Sweep<Report>("XML log", OutputKind::LogXml);
    Sweep<Report>("HTML log", OutputKind::LogHtml);
    Sweep<Report>("combined log", OutputKind::LogHtmlXml);
    Sweep<Report>("JSON log", OutputKind::LogJson);
    Sweep<Report>("UI JSON", OutputKind::UiJson);
    Sweep<Report>("damaged dump", OutputKind::UiXml, "<SYSTEM><biosknobs><k name='A &'/></biosknobs></SYSTEM>");
}

TEST(OutOfMemory, IsToldByAnUpdate)
{
    Sweep<Update>("update");
}

TEST(OutOfMemory, LosesNoEarlierEntry)
{
    Sweep<FailureEntry>("failure report");
}

} // namespace
