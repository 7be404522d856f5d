#include "Sources.h"

/// The system has no firmware attributes of a kernel.
const std::span<const SourceMaker> kRealSources = {};
