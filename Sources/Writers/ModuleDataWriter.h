#pragma once

#include "StatusCode.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Builds one report in memory: a module, perhaps divided into sub-modules, each with tabs (tables with fixed columns),
/// each with groups of rows. Whatever is added goes to the element of the level above that was added last.
///
/// A writer is used for one report, by one thread: Initialize, then AddSubMod, AddTab, AddGroup and AddRow in that
/// nesting, CopyDataToBuffer, UnInitialize (also when Initialize failed). Texts are UTF-8. Every operation returns
/// Success; NotFound for an empty argument; Missing when an earlier operation has not created what it needs; Failed
/// when the document could not be created; NoMemory. A failed operation changes nothing and traces why. Nothing throws.
class ModuleDataWriter
{
public:
    ModuleDataWriter() = default;
    ModuleDataWriter(const ModuleDataWriter &) = delete;
    ModuleDataWriter &operator=(const ModuleDataWriter &) = delete;
    virtual ~ModuleDataWriter() = default;

    virtual Status Initialize(std::string moduleName, std::string description) = 0;
    virtual Status AddSubMod(std::string subModName) = 0;

    /// `header`: the names of the columns, joined by commas without blanks.
    virtual Status AddTab(std::string tabName, std::string header) = 0;

    virtual Status AddGroup(std::string groupName) = 0;

    /// `rowContent`: the cells, each in quotation marks, joined by comma and blank.
    virtual Status AddRow(std::string rowContent) = 0;

    /// Replaces the content of `buffer` with the finished document.
    virtual Status CopyDataToBuffer(std::string &buffer) = 0;

    /// Gives up the document.
    virtual Status UnInitialize() = 0;

    /// Whether the last CopyDataToBuffer left the buffer as it was because the document holds text that is not UTF-8.
    virtual bool IsRefusedAsNotUtf8() const { return false; }

    // What the writers share in handling texts. These may throw std::bad_alloc.

    /// What stands between the texts of two neighbouring cells of a row. Nothing escapes it: a cell that holds it is
    /// split there.
    static constexpr std::string_view kCellSeparator = "\", \"";

    /// ::SanitizeText, under the name by which the writers know it.
    static std::string SanitizeText(std::string text);

    /// The pieces between all places where `separator` (not empty) stands, empty ones included: always at least one.
    static std::vector<std::string> SplitString(std::string_view text, std::string_view separator);
    /// The same without copying: the pieces are parts of `text`.
    static std::vector<std::string_view> SplitViews(std::string_view text, std::string_view separator);

    /// The same one by one: calls `visit` with every piece, without any allocation.
    template <typename Visit>
    static void ForEachPiece(std::string_view text, std::string_view separator, const Visit &visit)
    {
        std::size_t begin = 0;
        for (std::size_t found = text.find(separator); found != std::string_view::npos;
             found = text.find(separator, begin))
        {
            visit(text.substr(begin, found - begin));
            begin = found + separator.size();
        }
        visit(text.substr(begin));
    }

    /// The pieces of a row between the cell separators, parts of `row`; of two or more the first without its first and
    /// the last without its last character. A single piece is the whole row.
    static std::vector<std::string_view> SplitRow(std::string_view row);

    /// `text` without its first or its last character, if it has one.
    static std::string_view WithoutFirst(std::string_view text) { return text.substr(text.empty() ? 0 : 1); }
    static std::string_view WithoutLast(std::string_view text)
    {
        return text.substr(0, text.empty() ? 0 : text.size() - 1);
    }

    /// The pieces that end with `delimiter` or the text, as std::getline takes them: none for an empty text, no empty
    /// one behind a delimiter at the end.
    static std::vector<std::string> SplitByChar(std::string_view text, char delimiter);

    /// `text` with every `search` (not empty) replaced; what was put in is not searched again.
    static std::string ReplaceAll(std::string_view text, std::string_view search, std::string_view replacement);

    /// Decimal digits, nothing else.
    static std::string ToDecimalString(std::uint32_t number);
};
