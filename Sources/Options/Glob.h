#pragma once

#include <string>
#include <string_view>

/// Whether `text` is of the form `pattern`, where "*" stands for any text and "?" for one byte. Letters of ASCII are
/// the same in both cases. Takes no longer than the product of both lengths. May throw std::bad_alloc.
bool MatchesGlob(std::string_view pattern, std::string_view text);

/// Where `wanted` is in `text`, whatever the case of its ASCII letters; npos where it is not. `lowerWanted` is in lower
/// case already.
std::size_t FindIgnoringCase(std::string_view text, std::string_view lowerWanted);
