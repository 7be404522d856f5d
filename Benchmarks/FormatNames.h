#pragma once

#include "OutputKind.h"

#include <algorithm>
#include <optional>
#include <string_view>

struct NamedFormat
{
    std::string_view name;
    OutputKind kind;
};

/// The formats as the measuring programs take them.
constexpr NamedFormat kFormats[] = {{"UiXml", OutputKind::UiXml},     {"LogXml", OutputKind::LogXml},
                                    {"LogHtml", OutputKind::LogHtml}, {"LogHtmlXml", OutputKind::LogHtmlXml},
                                    {"LogJson", OutputKind::LogJson}, {"UiJson", OutputKind::UiJson}};

constexpr std::optional<OutputKind> FormatOfName(std::string_view name)
{
    const auto *const found = std::ranges::find(kFormats, name, &NamedFormat::name);
    return found == std::end(kFormats) ? std::nullopt : std::optional(found->kind);
}
