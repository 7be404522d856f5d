#include "BiosConfiguration.h"
#include "FailingAllocation.h"
#include "ModuleSupport.h"
#include "xmlInterface.h"

#include <gtest/gtest.h>
#include <memory>
#include <utility>

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
    ASSERT_EQ(TestSupport::InitModule(module, machine), StatusCode::Success);
    const OutputKind kind = OutputKind::UiXml;
    std::string golden, report;
    ASSERT_EQ(module.GetData("all", &kind, &golden), StatusCode::Success);
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

// The JSON library cannot free a document without memory: the first call fails behind InitModule.
TEST(OutOfMemory, EndsAnUpdateWithAnOutcome)
{
    Machine &machine = Machine::Fresh();
    const ParameterMap parameters = {{"toolxmlpath", machine.HostDirectory()}};
    TestSupport::WriteFile(machine.HostFile("t.txt"), "BootFast=Enabled;BootMode=Legacy");
    std::string ignored;
    ASSERT_EQ(UpdateBiosSettings(machine.HostFile("t.ini"), ignored, parameters), StatusCode::NotFound);
    const std::string firmware = TestSupport::ReadFile(machine.ToolFile("FenrikBinary/FenrikFirmware.json"));
    const auto isProgrammed = [&]
    { return TestSupport::ReadFile(machine.ToolFile("FenrikBinary/FenrikFirmware.json")) != firmware; };

    std::vector<Cap *> caps;
    BiosConfigModule module;
    allocationsLeft = kMostAllocations;
    module.InitModule(caps, parameters);
    const std::unique_ptr<Cap> cap(caps.at(0));
    const long first = kMostAllocations - std::exchange(allocationsLeft, -1) + 4;
    long succeeding = first;
    for (; !isProgrammed() && succeeding < kMostAllocations; ++succeeding)
    {
        std::string message;
        std::string path = machine.HostFile("t.txt");
        ParameterMap copy = parameters;
        const Status status =
            WithoutMemory(succeeding, [&] { return UpdateBiosSettings(std::move(path), message, std::move(copy)); });
        EXPECT_EQ(status == StatusCode::Success, isProgrammed()) << succeeding;
        EXPECT_TRUE(message.starts_with(isProgrammed() ? "BIOS settings updated" : "Failed to Update")) << succeeding;
    }
    EXPECT_GT(succeeding - first, 20);
    EXPECT_TRUE(isProgrammed());
}

} // namespace
