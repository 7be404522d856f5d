#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The whole of `text` as a number: decimal digits, or hexadecimal ones after "0x" or "0X". Nothing for any other text
/// and for numbers above 64 bits.
std::optional<std::uint64_t> ParseNumber(std::string_view text);

/// `value` as "0x" and at least `digits` upper-case hexadecimal digits.
std::string HexText(std::uint64_t value, int digits = 1);

/// The whole of `text` as a number that may be negative: as ParseNumber, with "-" in front. Nothing outside 64 bits.
std::optional<std::int64_t> ParseSignedNumber(std::string_view text);

/// `value` as a dump has it: as HexText gives it, in decimal ("-5") where it is negative.
std::string SignedText(std::int64_t value);
