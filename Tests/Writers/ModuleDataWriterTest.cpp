#include "ModuleSupport.h"
#include "ReportFormat.h"

#include <gtest/gtest.h>

namespace
{

using Pieces = std::vector<std::string>;

TEST(ModuleDataWriter, SanitizesTexts)
{
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"plain <&> \x7F", "plain <&> \x7F"},
        {"\t\n\r\x1F", "...."},
        {std::string("a\0b", 3), std::string("a\0b", 3)},
        {"\xC3\xA9\xE2\x82\xAC", "\xC3\xA9\xE2\x82\xAC"},
        {"x\xE9y", "x\xEF\xBF\xBDy"},
        {"a\xF0\x9F\x98\x80z", "a\xED\xA0\xBD\xED\xB8\x80z"},
        {"\xC3\x01\xC3", "\xEF\xBF\xBD.\xEF\xBF\xBD"},
    };
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(ModuleDataWriter::SanitizeText(text), expected) << text;
}

TEST(ModuleDataWriter, SplitsAndReplaces)
{
    EXPECT_EQ(ModuleDataWriter::SplitString("\"A\", \"B\", \"C\"", "\", \""), (Pieces{"\"A", "B", "C\""}));
    EXPECT_EQ(ModuleDataWriter::SplitString("", ","), Pieces{""});
    EXPECT_EQ(ModuleDataWriter::SplitString("aaa", "aa"), (Pieces{"", "a"}));
    EXPECT_EQ(ModuleDataWriter::SplitString("a,", ","), (Pieces{"a", ""}));
    EXPECT_EQ(ModuleDataWriter::SplitByChar("", ','), Pieces{});
    EXPECT_EQ(ModuleDataWriter::SplitByChar("a,,b,", ','), (Pieces{"a", "", "b"}));
    EXPECT_EQ(ModuleDataWriter::SplitByChar(",", ','), Pieces{""});
    EXPECT_EQ(ModuleDataWriter::ReplaceAll("A B  C", " ", "_"), "A_B__C");
    EXPECT_EQ(ModuleDataWriter::ReplaceAll("aa", "a", "aa"), "aaaa");
    EXPECT_EQ(ModuleDataWriter::ToDecimalString(4294967295U), "4294967295");
}

TEST(ModuleDataWriter, FactoryKnowsTenKinds)
{
    for (std::size_t kind = 0; kind <= 255; ++kind)
        EXPECT_EQ(ModuleDataWriterOwner(CreateModuleDataWriter(static_cast<OutputKind>(kind))) != nullptr, kind < 10)
            << kind;
    DestroyModuleDataWriter(nullptr);
}

} // namespace
