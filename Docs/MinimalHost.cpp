// A complete host: loads the module, shows its capabilities and prints one report.
// Usage: MinimalHost MODULE-FILE TOOL-DIRECTORY, the directory with its final separator.

#include "BiosConfigModule.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#ifdef _WIN32
#include <windows.h>

template <typename Function>
Function *FindExport(const char *file, const char *name)
{
    // What the module needs lies beside it; a path that is not a full one would not tell where.
    char full[MAX_PATH] = "";
    GetFullPathNameA(file, sizeof full, full, nullptr);
    const HMODULE library =
        LoadLibraryExA(full, nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    return library ? reinterpret_cast<Function *>(reinterpret_cast<void *>(GetProcAddress(library, name))) : nullptr;
}
#else
#include <dlfcn.h>

template <typename Function>
Function *FindExport(const char *file, const char *name)
{
    void *const library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    return library ? reinterpret_cast<Function *>(dlsym(library, name)) : nullptr;
}
#endif

int main(int argumentCount, char **arguments)
{
    if (argumentCount != 3)
        return 2;

    // The library stays loaded until the process ends.
    auto *const create = FindExport<decltype(CreateBiosConfigModule)>(arguments[1], "CreateBiosConfigModule");
    auto *const destroy = FindExport<decltype(DestroyBiosConfigModule)>(arguments[1], "DestroyBiosConfigModule");
    if (!create || !destroy)
    {
        std::cerr << "cannot load the module " << arguments[1] << "\n";
        return 1;
    }
    const std::unique_ptr<BaseModule, decltype(destroy)> module(create(), destroy);
    if (!module)
        return 1;

    // The records are the host's from now on, whatever the status.
    std::vector<Cap *> records;
    const Status initialised = module->InitModule(records, {{"toolxmlpath", arguments[2]}});
    const std::vector<std::unique_ptr<Cap>> capabilities(records.begin(), records.end());
    if (initialised != StatusCode::Success)
        return 1;
    for (const auto &capability : capabilities)
        std::cerr << module->GetModuleName() << ": " << capability->names.front() << "\n";

    // Success alone does not say that the report could be made: Error.xml tells.
    const OutputKind kind = OutputKind::UiXml;
    std::string report;
    const Status status = module->GetData("all", &kind, &report);
    std::cout << report;
    module->UnInitModule();
    return status == StatusCode::Success && !report.empty() ? 0 : 1;
}
