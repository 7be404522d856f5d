#pragma once

#include <string>

/// `text` as the documents of the module show texts from outside: re-encodes UTF-8 by way of UTF-16
/// (Platform::Utf8ToUtf16) unit by unit, so that ill-formed bytes become U+FFFD and a character beyond the Basic
/// Multilingual Plane becomes two sequences, and puts "." for bytes 1 to 31. May throw std::bad_alloc.
std::string SanitizeText(std::string text);
