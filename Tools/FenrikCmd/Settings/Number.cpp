#include "Number.h"

#include <algorithm>
#include <cctype>
#include <charconv>

std::optional<std::uint64_t> ParseNumber(std::string_view text)
{
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (isHexadecimal)
        text.remove_prefix(2);
    std::uint64_t number = 0;
    const char *const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, isHexadecimal ? 16 : 10);
    if (result.ec != std::errc{} || result.ptr != end)
        return std::nullopt;
    return number;
}

std::string HexText(std::uint64_t value, int digits)
{
    char buffer[16];
    char *const end = std::to_chars(buffer, buffer + sizeof buffer, value, 16).ptr;
    std::transform(buffer, end, buffer, [](unsigned char digit) { return static_cast<char>(std::toupper(digit)); });
    const auto missing = std::max<std::ptrdiff_t>(digits - (end - buffer), 0);
    return "0x" + std::string(static_cast<std::size_t>(missing), '0') + std::string(buffer, end);
}

std::optional<std::int64_t> ParseSignedNumber(std::string_view text)
{
    constexpr std::uint64_t kMostNegative = std::uint64_t{1} << 63;
    const bool isNegative = text.starts_with('-');
    const auto number = ParseNumber(text.substr(isNegative ? 1 : 0));
    if (!number || *number > kMostNegative - (isNegative ? 0 : 1))
        return std::nullopt;
    return static_cast<std::int64_t>(isNegative ? 0 - *number : *number);
}

std::string SignedText(std::int64_t value)
{
    return value < 0 ? std::to_string(value) : HexText(static_cast<std::uint64_t>(value));
}
