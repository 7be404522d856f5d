#include "Sources.h"

#include "RedfishSource.h"
#include "SimulatedSource.h"
#include "ToolError.h"

namespace
{

struct SourceMaker
{
    SourceKind kind;
    MakeSource make;
};

constexpr SourceMaker kMakers[] = {{SourceKind::Simulated, MakeSimulatedSource},
                                    {SourceKind::Redfish, MakeRedfishSource}};

} // namespace

std::unique_ptr<SettingsSource> OpenSource(const Configuration &configuration, WarningSink warn)
{
    for (const SourceMaker &maker : kMakers)
    {
        if (maker.kind == configuration.source)
            return maker.make(configuration, std::move(warn));
    }
    throw ToolError(ExitCode::InterfaceDisabled, "this system has no source \"" +
                                                     std::string(SourceName(configuration.source)) +
                                                     "\"; \"simulated\" is there on every one");
}
