#include "ModuleHost.h"

#include "ExitCode.h"
#include "FilesystemPath.h"

#include <algorithm>
#include <iterator>

namespace
{

/// In the order of the values, from 1.
constexpr const char *kStatusMeanings[] = {
    "success",
    "not found, or the external tool ended with exit code 1",
    "no memory",
    "something needed is missing",
    "failed or unavailable",
    "the external tool ended with an exit code other than 0 and 1",
};

std::string Describe(Status status)
{
    const std::string number = "status " + std::to_string(status);
    const Status last = std::size(kStatusMeanings);
    return status >= 1 && status <= last ? number + ", " + kStatusMeanings[status - 1] : number;
}

/// A bare file name would be looked for in the system's library directories.
std::string FullPath(const std::string &path)
{
    return Platform::FromFilesystemPath(std::filesystem::absolute(Platform::ToFilesystemPath(path)).make_preferred());
}

ParameterMap Parameters(const std::string &toolDirectory)
{
    return {{"toolxmlpath", toolDirectory}};
}

} // namespace

ModuleHost::ModuleHost(const std::string &path) : m_library(FullPath(path), m_loadError), m_module(nullptr, nullptr)
{
    if (!m_library)
        throw Failure(ExitCode::NotFound, "cannot load the module: " + m_loadError);
    auto *const create = m_library.Find<decltype(CreateBiosConfigModule)>("CreateBiosConfigModule");
    auto *const destroy = m_library.Find<Destroy>("DestroyBiosConfigModule");
    if (!create || !destroy)
        throw Failure(ExitCode::Unexpected,
                      path + " is not a BIOS configuration module: it lacks the module's exports");
    m_module = {create(), destroy};
    if (!m_module)
        throw Failure(ExitCode::Unexpected, "the module could not create its object");
}

ModuleHost::~ModuleHost()
{
    if (m_module)
        m_module->UnInitModule();
}

void ModuleHost::Initialise(const std::string &toolDirectory)
{
    std::vector<Cap *> capabilities;
    const Status status = m_module->InitModule(capabilities, Parameters(toolDirectory));
    for (Cap *const capability : capabilities)
        m_capabilities.emplace_back(capability);
    if (status != StatusCode::Success)
        throw Failure(ExitCode::Unexpected, "the module does not accept the tool directory " + toolDirectory +
                                                " (InitModule: " + Describe(status) + ")");
}

bool ModuleHost::Offers(const std::string &option) const
{
    return option == "all" || std::any_of(m_capabilities.begin(), m_capabilities.end(),
                                          [&option](const auto &capability)
                                          {
                                              const auto &names = capability->names;
                                              return std::find(names.begin(), names.end(), option) != names.end();
                                          });
}

std::string ModuleHost::Report(const std::string &option, OutputKind kind)
{
    std::string report;
    const Status status = m_module->GetData(option.c_str(), &kind, &report);
    if (status != StatusCode::Success)
        throw Failure(ExitCode::Unexpected, "the module made no report (GetData: " + Describe(status) + ")");
    return report;
}

std::string ModuleHost::UpdateSettings(const std::string &templatePath, const std::string &toolDirectory)
{
    auto *const update = m_library.Find<decltype(UpdateBiosSettings)>("UpdateBiosSettings");
    if (!update)
        throw Failure(ExitCode::Unexpected, "the module does not offer updates");
    std::string message;
    const Status status = update(templatePath, message, Parameters(toolDirectory));
    if (status == StatusCode::Success)
        return message;
    // Those that are the tool's; all others are the module's own.
    const bool isOfTool = status == StatusCode::NotFound || status == StatusCode::ToolFailed;
    throw Failure(isOfTool ? ExitCode::ToolFailed : ExitCode::Unexpected,
                  (message.empty() ? "the settings were not updated" : message) +
                      " (UpdateBiosSettings: " + Describe(status) + ")");
}
