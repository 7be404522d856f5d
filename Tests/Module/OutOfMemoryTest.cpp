#include "BiosConfiguration.h"
#include "ErrorFile.h"
#include "FailingAllocation.h"
#include "ModuleSupport.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <libxml/xmlerror.h>
#include <tuple>

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

constexpr const char *kEarlierFile =
    "<?xml version=\"1.0\"?>\n<Tool Name=\"Tarnwell\"><Error><Message Name=\"Earlier\" "
    "Description=\"entry\"/></Error></Tool>\n";
constexpr const char *kEarlier = "Earlier / entry";

/// What a request is given and what it leaves, which is looked at when memory is back.
struct Request
{
    void Prepare()
    {
        std::filesystem::remove(firmware);
        std::filesystem::remove_all(machine.ToolFile("out"));
        TestSupport::WriteFile(machine.HostFile("Error.xml"), kEarlierFile);
        parameters = {{"toolxmlpath", machine.HostDirectory()}};
        path = machine.HostFile("t.txt");
    }

    /// The capabilities, the report or the message, and whether options are programmed.
    std::string Data() const
    {
        const std::string options = std::filesystem::exists(firmware) ? TestSupport::ReadFile(firmware) : "";
        return (caps.empty() ? "" : caps[0]->names[0]) + text +
               (options.find("\"Legacy\"") == std::string::npos ? "" : " (programmed)");
    }

    void Forget()
    {
        for (const Cap *cap : caps)
            delete cap;
        caps = {};
        parameters = {};
        path = {};
        text = {};
    }

    Machine &machine = Machine::Fresh();
    std::string firmware = machine.ToolFile("FenrikBinary/FenrikFirmware.json");
    BiosConfigModule module;
    std::vector<Cap *> caps = {};
    ParameterMap parameters = {};
    std::string path = {}, text = {};
};

/// Runs the request with the allocation number `point` failing, alone or with all behind it.
template <typename Make>
Seen Run(Request &request, const Make &make, long point, bool once)
{
    request.Prepare();
    Seen seen;
    seen.status = WithoutMemory(point, make, once);
    seen.hash = std::hash<std::string>()(request.Data());
    request.Forget();
    seen.entries = request.machine.Errors();
    return seen;
}

/// What a request that succeeds leaves behind, and all before it.
template <typename Make>
long BlocksBehind(Request &request, const Make &make)
{
    Run(request, make, -1, false);
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

/// Runs it with each `step`-th allocation failing in turn. Whatever the host gets is whole or it is told, by an entry
/// where `wantsEntry`; nothing that was recorded earlier is lost; nothing is kept.
template <typename Make>
void Sweep(const char *what, Request &request, bool wantsEntry, const Make &make)
{
    const char *const wanted = std::getenv("SWEEP_STEP"); // 1: all of them
    const long step = wanted ? std::atol(wanted) : SWEEP_STEP;
    {
        SCOPED_TRACE("fills what the libraries keep");
        Run(request, make, -1, false);
        Run(request, make, 0, false);
        ReportError("Message", "Title", "Source", "1", "Date");
    }
    const Seen whole = Run(request, make, -1, false);
    ASSERT_EQ(whole.status, StatusCode::Success);
    request.Prepare();
    const long count = CountAllocations(make);
    request.Forget();
    std::printf("%s: every allocation number %ld of %ld fails\n", what, step, count);
    EXPECT_GT(count, 10);
    const long kept = BlocksBehind(request, make);
    for (const bool once : {true, false})
    {
        for (long point = 0; point < count; point += step)
        {
            SCOPED_TRACE(std::string(what) + (once ? ", once" : ", from then on") + ", point " + std::to_string(point));
            Check(Run(request, make, point, once), whole, once && wantsEntry);
        }
    }
    if (!testing::Test::HasFailure()) // a failure is kept, too
    {
        EXPECT_EQ(BlocksBehind(request, make), kept);
    }
    for (const char *component : {"XMLParser", "ModuleUIXMLWriter", "ErrorUIXMLWriter"})
    {
        DebugHandle_t *handle = nullptr;
        InitDebugHandle(component, &handle);
        EXPECT_EQ(handle->refCount, 1) << component;
        UnInitDebugHandle(handle);
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

// The place of the error file is among what an initialisation is given: it may be unknown yet.
TEST(OutOfMemory, IsToldByAnInitialisation)
{
    Request request;
    Sweep("InitModule", request, false,
          [&] { return request.module.InitModule(request.caps, std::move(request.parameters)); });
}

TEST(OutOfMemory, IsToldByAReport)
{
    const std::string sound = TestSupport::ReadFile(TEST_DATA_DIRECTORY "SmallFirmware.xml");
    const std::string damaged = "<SYSTEM><biosknobs><k name='A &'/></biosknobs></SYSTEM>";
    const std::tuple<const char *, OutputKind, const std::string &> cases[] = {
        {"UI XML", OutputKind::UiXml, sound},         {"XML log", OutputKind::LogXml, sound},
        {"HTML log", OutputKind::LogHtml, sound},     {"combined log", OutputKind::LogHtmlXml, sound},
        {"JSON log", OutputKind::LogJson, sound},     {"UI JSON", OutputKind::UiJson, sound},
        {"damaged dump", OutputKind::UiXml, damaged},
    };
    for (const auto &[what, kind, dump] : cases)
    {
        Request request;
        request.machine.UseDump(dump);
        EXPECT_EQ(TestSupport::InitModule(request.module, request.machine), StatusCode::Success);
        Sweep(what, request, true, [&, &kind = kind] { return request.module.GetData("all", &kind, &request.text); });
    }
}

TEST(OutOfMemory, IsToldByAnUpdate)
{
    Request request;
    TestSupport::WriteFile(request.machine.HostFile("t.txt"), "BootFast=Enabled;BootMode=Legacy");
    Sweep("update", request, false,
          [&] { return UpdateBiosSettings(std::move(request.path), request.text, std::move(request.parameters)); });
}

TEST(OutOfMemory, LosesNoEarlierEntry)
{
    Request request;
    InitErrorFile(request.machine.HostDirectory().c_str(), "Error.xml");
    Sweep("failure report", request, false, [] { return ReportError("Message", "Title", "Source", "1", "Date"); });
}

} // namespace
