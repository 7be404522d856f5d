#pragma once

#include "OptionTable.h"

#include <string>
#include <string_view>
#include <vector>

/// What people are told of an option, in UTF-8. Nothing tells a value of a redacted option. May throw std::bad_alloc.

/// Whether the value is none of the choices that the option has.
bool IsNoChoice(const BiosOption &option);

/// A value with its number where that says something else: "Enabled (0x1)", "(empty)".
std::string DetailedValue(const BiosOption &option, std::string_view value);

/// What the dump of a real machine says of the values beyond the size, to stand behind it: ", from 0 to 30"; empty
/// where it does not.
std::string LimitsText(const BiosOption &option);

/// What is to be said behind the current value: ", changed"; empty for nothing.
std::string ValueRemark(const BiosOption &option);

/// The size, to stand behind the kind: ", 1 byte"; empty where it is not known.
std::string SizeText(const BiosOption &option);

/// The condition and whether it is met, as far as that can be told by the values of `table`; empty where there is none.
std::string ConditionText(const BiosOption &option, const OptionTable &table);

/// A text as one cell of comma-separated values: in quotes where it has to be.
std::string CsvCell(std::string_view text);

/// The options as comma-separated values with a head line: Name,Value,Prompt,Page,Default,Changed.
std::string OptionsAsCsv(const std::vector<const BiosOption *> &options);
