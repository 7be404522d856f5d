#include "BiosConfiguration.h"
#include "FailingAllocation.h"
#include "ModuleSupport.h"
#include "xmlInterface.h"

#include <gtest/gtest.h>
#include <memory>

namespace
{

using TestSupport::Machine;

// Each call is made again and again, with one more allocation that succeeds each time, until memory suffices. Nothing
// may be thrown, and afterwards everything works. (What libxml2 allocates does not count.)

constexpr long kMostAllocations = 3000;

TEST(OutOfMemory, GivesNoModuleOrAWholeOne)
{
    long succeeding = 0;
    BaseModule *module = nullptr;
    for (; !module && succeeding < kMostAllocations; ++succeeding)
        module = WithoutMemory(succeeding, CreateBiosConfigModule);
    EXPECT_GT(succeeding, 1);
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(module->GetModuleName(), "BIOS Options");
    DestroyBiosConfigModule(module);
}

TEST(OutOfMemory, EndsAReportWithAStatus)
{
    Machine &machine = Machine::Fresh();
    machine.UseDump(TestSupport::ReadFile(TEST_DATA_DIRECTORY "SmallFirmware.xml"));
    BiosConfigModule module;
    std::vector<Cap *> caps;
    ASSERT_EQ(module.InitModule(caps, {{"toolxmlpath", machine.HostDirectory()}}), StatusCode::Success);
    const std::unique_ptr<Cap> cap(caps.at(0));
    const OutputKind kind = OutputKind::UiXml;
    const std::string golden = TestSupport::ReadFile(TEST_DATA_DIRECTORY "SmallFirmware_UI_XML");
    std::string report;
    long succeeding = 0;
    for (; report != golden && succeeding < kMostAllocations; ++succeeding)
    {
        report.clear();
        const Status status = WithoutMemory(succeeding, [&] { return module.GetData("all", &kind, &report); });
        EXPECT_TRUE(status == StatusCode::Success || status == StatusCode::NoMemory) << status;
    }
    EXPECT_GT(succeeding, 30);
    EXPECT_EQ(report, golden);

    // Nobody has kept a trace handle.
    DebugHandle_t *handle = nullptr;
    for (const char *component : {"XMLParser", "ModuleUIXMLWriter", "ErrorUIXMLWriter"})
    {
        InitDebugHandle(component, &handle);
        EXPECT_EQ(handle->refCount, 1) << component;
        UnInitDebugHandle(handle);
    }
}

} // namespace
