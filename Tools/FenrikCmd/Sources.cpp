#include "Sources.h"

#include "SimulatedSource.h"
#include "ToolError.h"

std::unique_ptr<SettingsSource> OpenSource(const Configuration &configuration, WarningSink warn)
{
    if (configuration.source == SourceKind::Simulated)
        return MakeSimulatedSource(configuration, std::move(warn));
    for (const SourceMaker &maker : kRealSources)
    {
        if (maker.kind == configuration.source)
            return maker.make(configuration, std::move(warn));
    }
    throw ToolError(ExitCode::InterfaceDisabled,
                    "there is no source \"" + std::string(SourceName(configuration.source)) +
                        "\" on this system; Linux has it, and \"simulated\" is there on every system");
}
