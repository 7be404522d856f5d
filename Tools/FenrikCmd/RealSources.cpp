#include "KernelSource.h"
#include "RedfishSource.h"
#include "Sources.h"

namespace
{

constexpr SourceMaker kMakers[] = {{SourceKind::Kernel, MakeKernelSource}, {SourceKind::Redfish, MakeRedfishSource}};

} // namespace

const std::span<const SourceMaker> kRealSources = kMakers;
