#include "KernelSource.h"
#include "Sources.h"

namespace
{

constexpr SourceMaker kMakers[] = {{SourceKind::Kernel, MakeKernelSource}};

} // namespace

const std::span<const SourceMaker> kRealSources = kMakers;
