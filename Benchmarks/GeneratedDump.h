#pragma once

#include <cstddef>
#include <string>

/// The tool's dump of `knobs` invented options, as the tool writes it: about one kilobyte each, on a dozen setup pages,
/// of every type. The same for the same number.
std::string GenerateDump(std::size_t knobs);
