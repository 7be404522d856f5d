#include "DebugTraceValues.h"

#include "DebugRegistry.h"
#include "DebugTrace.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <span>

namespace
{

constexpr const char *kBanner = "                             --------------------Values------------------";
constexpr std::size_t kBytesInRow = 8;
constexpr std::size_t kRowSize = 100;

/// The text of one row in a buffer of its own. Places without a byte are as wide as the blank behind them.
class Row
{
public:
    explicit Row(std::span<const unsigned char> bytes)
    {
        Append(" Pos  0x%016" PRIxPTR ":  ", reinterpret_cast<std::uintptr_t>(bytes.data()));
        for (const unsigned char byte : bytes)
            Append("0x%02x ", byte);
        Append("%*s", static_cast<int>(kBytesInRow - bytes.size()), "");
    }

    const char *Text() const { return m_text; }

private:
    template <typename... Values>
    void Append(const char *format, Values... values)
    {
        m_length += std::snprintf(m_text + m_length, kRowSize - static_cast<std::size_t>(m_length), format, values...);
    }

    char m_text[kRowSize];
    int m_length = 0;
};

} // namespace

Status DebugTraceValues(const DebugHandle_t *handle, std::uint32_t level, const void *data, std::size_t length,
                        const char *sourceFile, const char *functionName, std::uint32_t line)
{
    if (!handle || !data)
        return StatusCode::Missing;
    if (!FindRegistered(*handle))
        return StatusCode::NotFound;
    if (!TraceWanted(handle, level))
        return StatusCode::Success;
    DebugTrace(handle, "", "", 0, level, "%s", kBanner);
    std::span<const unsigned char> rest(static_cast<const unsigned char *>(data), length);
    while (!rest.empty())
    {
        const std::size_t count = std::min(rest.size(), kBytesInRow);
        DebugTrace(handle, sourceFile, functionName, line, level, "%s", Row(rest.first(count)).Text());
        rest = rest.subspan(count);
    }
    return StatusCode::Success;
}
