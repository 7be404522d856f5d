// Requests to the module, loaded as a host loads it.
// Usage: ModuleRequests MODULE-FILE DIRECTORY FORMAT       reports of all options
//        ModuleRequests MODULE-FILE DIRECTORY TEMPLATE     updates with a template, a file's path

#include "BiosConfigModule.h"
#include "FormatNames.h"
#include "Platform.h"
#include "RequestLoop.h"

#include <iostream>
#include <memory>

namespace
{

using Create = decltype(CreateBiosConfigModule);
using Destroy = decltype(DestroyBiosConfigModule);
using Update = decltype(UpdateBiosSettings);

int ServeReports(const Platform::SharedLibrary &library, const ParameterMap &parameters, OutputKind kind)
{
    auto *const destroy = library.Find<Destroy>("DestroyBiosConfigModule");
    const std::unique_ptr<BaseModule, Destroy *> module(library.Find<Create>("CreateBiosConfigModule")(), destroy);
    std::vector<Cap *> records;
    const Status status = module->InitModule(records, parameters);
    const std::vector<std::unique_ptr<Cap>> capabilities(records.begin(), records.end());
    if (status != StatusCode::Success)
        return 1;
    return ServeRequests(
        [&]
        {
            std::string report;
            return module->GetData("bios", &kind, &report) == StatusCode::Success && !report.empty();
        });
}

int ServeUpdates(const Platform::SharedLibrary &library, const ParameterMap &parameters, const char *path)
{
    auto *const update = library.Find<Update>("UpdateBiosSettings");
    return ServeRequests(
        [&]
        {
            std::string message;
            return update(path, message, parameters) == StatusCode::Success;
        });
}

} // namespace

int main(int argumentCount, char **arguments)
{
    if (argumentCount != 4)
        return 2;
    std::string error;
    const Platform::SharedLibrary library(arguments[1], error);
    if (!library)
    {
        std::cerr << error << "\n";
        return 1;
    }
    const ParameterMap parameters = {{"toolxmlpath", arguments[2]}};
    const std::optional<OutputKind> kind = FormatOfName(arguments[3]);
    return kind ? ServeReports(library, parameters, *kind) : ServeUpdates(library, parameters, arguments[3]);
}
