#pragma once

#include <cstddef>
#include <cstdint>

/// The format of a report. One byte; the two kinds of a pair give the same document. Values above UiJson have no
/// format.
enum class OutputKind : std::uint8_t
{
    UiXml = 0,
    UiXmlAlternate = 1,
    LogXml = 2,
    LogXmlAlternate = 3,
    LogHtml = 4,
    LogHtmlAlternate = 5,
    LogHtmlXml = 6,
    LogHtmlXmlAlternate = 7,
    LogJson = 8,
    UiJson = 9
};

/// How many kinds have a format: those from 0 on.
constexpr std::size_t kOutputKindCount = 10;
