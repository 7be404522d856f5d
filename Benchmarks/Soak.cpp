// Soak [REQUESTS]: a host that makes so many requests of every kind in one process, 300 unless it is told, and fails
// when one ends otherwise than it should, or when memory or open files grow from the first tenth to the end. What it
// says goes to standard error, because standard output has what the tool prints.

#include "BiosConfigModule.h"
#include "ModuleSupport.h"
#include "ProcessUsage.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

namespace
{

using namespace TestSupport;

/// What the system may round, or the heap keep of the memory that was in use.
constexpr std::size_t kResidentSlack = std::size_t{2} << 20;

constexpr const char *kDamaged = "<SYSTEM><biosknobs><knob name='A &' SetupPgPtr='P/a'/></biosknobs></SYSTEM>";
constexpr const char *kNotUtf8 = "<?xml version='1.0' encoding='ISO-8859-1'?><SYSTEM><biosknobs><knob name='\xE4'/>";

/// In the place of a kind.
constexpr int kNoBuffer = -1;
constexpr int kNoDirectory = -2;

struct Host
{
    Machine &machine = Machine::Fresh();
    std::string error;
    Platform::SharedLibrary library{MODULE_FILE, error};
    decltype(CreateBiosConfigModule) *create = library.Find<decltype(CreateBiosConfigModule)>("CreateBiosConfigModule");
    decltype(DestroyBiosConfigModule) *destroy =
        library.Find<decltype(DestroyBiosConfigModule)>("DestroyBiosConfigModule");
    decltype(UpdateBiosSettings) *update = library.Find<decltype(UpdateBiosSettings)>("UpdateBiosSettings");
};

/// A request of a module object of its own: for a report where `kind` is one, else for an update with the template.
struct Request
{
    const char *what;
    std::optional<int> kind;
    const char *templateName;
    /// Of the tool.
    const char *fault;
    /// Left by the tool in the place of its own, if any.
    const char *dump;
    Status expected;
};

constexpr Request kRequests[] = {
    {"UI XML", 0, nullptr, "", nullptr, StatusCode::Success},
    {"XML log", 2, nullptr, "", nullptr, StatusCode::Success},
    {"HTML log", 4, nullptr, "", nullptr, StatusCode::Success},
    {"combined log", 6, nullptr, "", nullptr, StatusCode::Success},
    {"JSON log", 8, nullptr, "", nullptr, StatusCode::Success},
    {"UI JSON", 9, nullptr, "", nullptr, StatusCode::Success},
    {"no such kind", 77, nullptr, "", nullptr, StatusCode::Success},
    {"no buffer", kNoBuffer, nullptr, "", nullptr, StatusCode::NotFound},
    {"no such directory", kNoDirectory, nullptr, "", nullptr, StatusCode::Failed},
    {"damaged dump", 0, nullptr, "exit:0", kDamaged, StatusCode::Success},
    {"dump cut short", 8, nullptr, "halfdump", nullptr, StatusCode::Success},
    {"text that is not UTF-8", 9, nullptr, "exit:0", kNotUtf8, StatusCode::Success},
    {"another root", 4, nullptr, "wrongroot", nullptr, StatusCode::Success},
    {"tool not enabled", 2, nullptr, "exit:3", nullptr, StatusCode::Success},
    {"tool that crashes", 6, nullptr, "crash", nullptr, StatusCode::Success},
    {"text template", {}, "good.txt", "", nullptr, StatusCode::Success},
    {"knob file", {}, "good.ini", "", nullptr, StatusCode::Success},
    {"refused options", {}, "good.txt", "progknobsfromfile=exit:1", nullptr, StatusCode::NotFound},
    {"no template", {}, "good.doc", "", nullptr, StatusCode::Failed},
    {"tool that fails", {}, "good.txt", "progknobsfromfile=exit:4", nullptr, StatusCode::ToolFailed},
};

Status Report(const Host &host, int kind)
{
    const std::unique_ptr<BaseModule, decltype(&DestroyBiosConfigModule)> module(host.create(), host.destroy);
    if (!module)
        return StatusCode::NoMemory;
    std::vector<Cap *> caps;
    if (kind == kNoDirectory)
        return module->InitModule(caps, {{"toolxmlpath", host.machine.HostFile("nowhere/")}});
    const Status ready = InitModule(*module, host.machine);
    if (ready != StatusCode::Success)
        return ready;
    const auto outputKind = static_cast<OutputKind>(kind);
    std::string report;
    const Status status = module->GetData("all", &outputKind, kind == kNoBuffer ? nullptr : &report);
    module->UnInitModule();
    return status;
}

Status Make(const Host &host, const Request &request)
{
    const EnvironmentSetting fault("FENRIKCMD_FAULT", request.fault);
    if (request.dump)
        WriteFile(host.machine.ToolFile("FenrikOutput.xml"), request.dump);
    if (request.kind)
        return Report(host, *request.kind);
    std::string message;
    return host.update(host.machine.HostFile(request.templateName), message,
                       {{"toolxmlpath", host.machine.HostDirectory()}});
}

/// Every request once. The error file starts anew, or its size would count.
bool MakeRound(const Host &host)
{
    std::filesystem::remove(host.machine.HostFile("Error.xml"));
    bool isGood = true;
    for (const Request &request : kRequests)
    {
        const Status status = Make(host, request);
        if (status != request.expected)
            std::fprintf(stderr, "%s: status %d\n", request.what, static_cast<int>(status));
        isGood = isGood && status == request.expected;
    }
    return isGood;
}

ProcessUsage Show(const char *when)
{
    const ProcessUsage usage = UsageOfProcess();
    std::fprintf(stderr, "%s: heap %zu blocks, resident %zu KB, open files %zu\n", when, usage.heapBlocks,
                 usage.residentBytes / 1024, usage.openFiles);
    return usage;
}

bool Soak(const Host &host, std::size_t requests)
{
    const std::size_t rounds = std::max(requests / std::size(kRequests), std::size_t{10});
    std::fprintf(stderr, "%zu requests in %zu rounds\n", rounds * std::size(kRequests), rounds);
    Show("start");
    ProcessUsage early = {};
    for (std::size_t round = 1; round <= rounds; ++round)
    {
        if (!MakeRound(host))
            return false;
        if (round == rounds / 10)
            early = Show("10 %");
    }
    const ProcessUsage late = Show("end");
    return late.heapBlocks <= early.heapBlocks && late.openFiles <= early.openFiles &&
           late.residentBytes <= early.residentBytes + kResidentSlack;
}

} // namespace

int main(int argumentCount, char **arguments)
{
    const Host host;
    if (!host.create || !host.destroy || !host.update)
        return 2;
    WriteFile(host.machine.HostFile("good.txt"), "BootFast=Enabled;BootMode=Legacy");
    WriteFile(host.machine.HostFile("good.ini"), "BootFast=Disabled");
    const bool isFlat = Soak(host, argumentCount > 1 ? std::strtoul(arguments[1], nullptr, 10) : 300);
    std::fputs(isFlat ? "flat\n" : "it grows, or a request went wrong\n", stderr);
    return isFlat ? 0 : 1;
}
