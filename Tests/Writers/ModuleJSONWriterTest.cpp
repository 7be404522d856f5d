#include "CopyingJSONWriter.h"

#include <gtest/gtest.h>
#include <random>

namespace
{

/// Some operation with some arguments, the same for the same number.
Status CallAtRandom(ModuleDataWriter &writer, std::string &buffer, unsigned number)
{
    std::mt19937 random(number);
    const auto pick = [&random](std::initializer_list<const char *> texts)
    { return std::string(texts.begin()[random() % texts.size()]); };
    const auto chance = random() % 32;
    if (chance == 0)
        return writer.UnInitialize();
    if (chance == 1)
        return writer.Initialize(pick({"M", "ACPI"}), pick({"", "", "D"}));
    if (chance < 5)
        return writer.CopyDataToBuffer(buffer);
    if (chance < 12)
        return writer.AddSubMod(pick({"S", "S", "S", "\xFF"}));
    if (chance < 19)
        return writer.AddTab("T", pick({"a,b", "b,\"a\\,b", "a,", ""}));
    if (chance < 26)
        return writer.AddGroup(pick({"G", "PCI Dump", ""}));
    return writer.AddRow(pick({"\"A\"", "\"A\", \"B\", \"C\"", "x", "\"\x01\x7F\", \"\\\"\n\xC3\xA9\""}));
}

/// Whatever the order of the calls, moving parts of the document must not be seen from outside.
TEST(ModuleJSONWriter, AgreesWithOneThatCopies)
{
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    for (int run = 0; run < 400; ++run)
    {
        const OutputKind kind = run % 2 == 0 ? OutputKind::LogJson : OutputKind::UiJson;
        const ModuleDataWriterOwner writer(CreateModuleDataWriter(kind));
        CopyingJSONWriter copying(kind);
        std::string document;
        std::string expected;
        for (int count = 0; count < 30; ++count)
        {
            const auto number = static_cast<unsigned>(random());
            EXPECT_EQ(CallAtRandom(*writer, document, number), CallAtRandom(copying, expected, number));
            ASSERT_EQ(writer->IsRefusedAsNotUtf8(), copying.IsRefusedAsNotUtf8()) << "seed " << seed << ", run " << run;
            ASSERT_EQ(document, expected) << "seed " << seed << ", run " << run << ", call " << count;
        }
    }
}

} // namespace
