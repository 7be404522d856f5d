#include "ModuleSupport.h"
#include "ReportFormat.h"

#include <gtest/gtest.h>

namespace
{

TEST(ModuleDataWriter, SanitizesTexts)
{
    const std::pair<std::string, std::string> cases[] = {
        {"plain <&> \x7F", "plain <&> \x7F"},
        {"\t\n\r\x1F", "...."},
        {std::string("a\0b", 3), std::string("a\0b", 3)},
        {"\xC3\xA9\xE2\x82\xAC", "\xC3\xA9\xE2\x82\xAC"},
        {"x\xE9y", "x\xEF\xBF\xBDy"},
        {"\xE2\x82z", "\xEF\xBF\xBDz"},
        {"\xF0\x9F\x98", "\xEF\xBF\xBD"},
        {"\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD"}, // too long for what it says
        {"a\xF0\x9F\x98\x80z", "a\xED\xA0\xBD\xED\xB8\x80z"},
        {"\xC3\x01\xC3", "\xEF\xBF\xBD.\xEF\xBF\xBD"},
    };
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(ModuleDataWriter::SanitizeText(text), expected) << text;
    // The systems differ in how many it is: beyond the last character, a surrogate, three bytes where two would do.
    for (const char *const text : {"\xF4\x90\x80\x80", "\xED\xA0\x80", "\xE0\x82\x80"})
        EXPECT_EQ(ModuleDataWriter::ReplaceAll(ModuleDataWriter::SanitizeText(text), "\xEF\xBF\xBD", ""), "") << text;
}

} // namespace
