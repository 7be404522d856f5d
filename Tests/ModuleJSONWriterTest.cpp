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
    switch (random() % 32)
    {
    case 0:
        return writer.UnInitialize();
    case 1:
        return writer.Initialize(pick({"M", "ACPI"}), pick({"", "", "D"}));
    case 2:
    case 3:
    case 4:
        return writer.CopyDataToBuffer(buffer);
    default:
        break;
    }
    switch (random() % 4)
    {
    case 0:
        return writer.AddSubMod("S");
    case 1:
        return writer.AddTab("T", pick({"a,b", "a,", ""}));
    case 2:
        return writer.AddGroup(pick({"G", "PCI Dump", ""}));
    default:
        return writer.AddRow(pick({"\"A\"", "\"A\", \"B\", \"C\"", "x"}));
    }
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
            ASSERT_EQ(document, expected) << "seed " << seed << ", run " << run << ", call " << count;
        }
    }
}

} // namespace
