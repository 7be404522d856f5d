#pragma once

#include "Setting.h"

#include <cstdint>

/// The number of options in the built-in firmware.
std::uint32_t DefaultKnobCount();

/// Option number `index` of every firmware that has so many: first the built-in options in the order of their pages,
/// then the same again for node 1, node 2 and so on, each with a name of its own. Its current value is the default.
Setting MakeKnob(std::uint32_t index);
