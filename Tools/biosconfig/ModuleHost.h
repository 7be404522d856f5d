#pragma once

#include "BiosConfigModule.h"
#include "Platform.h"

#include <memory>
#include <string>
#include <vector>

/// The module, loaded from its file as any host loads it, and its one object. Used from one thread.
class ModuleHost
{
public:
    /// Loads the module at `path` and creates its object. Throws Failure when that cannot be done.
    explicit ModuleHost(const std::string &path);
    ~ModuleHost();
    ModuleHost(const ModuleHost &) = delete;
    ModuleHost &operator=(const ModuleHost &) = delete;

    /// Hands the module its tool directory (with final separator) and takes its capabilities. Throws Failure when the
    /// module refuses.
    void Initialise(const std::string &toolDirectory);

    std::string Name() const { return m_module->GetModuleName(); }

    const std::vector<std::unique_ptr<Cap>> &Capabilities() const { return m_capabilities; }

    /// Whether a capability has the name `option`; "all" stands for the first one and is always offered.
    bool Offers(const std::string &option) const;

    /// The report of `option`, empty when the module made none. Throws Failure when the module gives a failure status.
    std::string Report(const std::string &option, OutputKind kind);

    /// Has the BIOS options programmed that the template assigns, by a module object of the module's own. Gives the
    /// module's message. Throws Failure for any status but success and when the module does not offer updates.
    std::string UpdateSettings(const std::string &templatePath, const std::string &toolDirectory);

private:
    using Destroy = decltype(DestroyBiosConfigModule);

    // Before the object, so that the library is unloaded after it.
    std::string m_loadError;
    Platform::SharedLibrary m_library;
    std::unique_ptr<BaseModule, Destroy *> m_module;
    std::vector<std::unique_ptr<Cap>> m_capabilities;
};
