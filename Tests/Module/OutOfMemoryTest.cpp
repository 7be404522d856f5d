#include "ErrorFile.h"
#include "FailingAllocation.h"
#include "ModuleRequest.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <libxml/xmlerror.h>
#include <tuple>

namespace
{

using namespace TestSupport;

/// Runs the request with the allocation number `point` failing, alone or with all behind it.
template <typename Make>
Seen Run(Request &request, const Make &make, long point, bool once)
{
    return request.Run([&] { return WithoutMemory(point, make, once); });
}

/// What a request that succeeds leaves behind, and all before it.
template <typename Make>
long BlocksBehind(Request &request, const Make &make)
{
    Run(request, make, -1, false);
    xmlResetLastError();
    return liveBlocks;
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
    const std::string sound = ReadFile(TEST_DATA_DIRECTORY "SmallFirmware.xml");
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
        EXPECT_EQ(InitModule(request.module, request.machine), StatusCode::Success);
        Sweep(what, request, true, [&, &kind = kind] { return request.module.GetData("all", &kind, &request.text); });
    }
}

TEST(OutOfMemory, IsToldByAnUpdate)
{
    Request request;
    WriteFile(request.machine.HostFile("t.txt"), "BootFast=Enabled;BootMode=Legacy");
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
