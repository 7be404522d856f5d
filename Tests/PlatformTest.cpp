#include "Platform.h"
#include "CommandLine.h"
#include "FilesystemPath.h"
#include "TestSupport.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <vector>

namespace
{

namespace fs = std::filesystem;
using namespace TestSupport;

TEST(CommandLine, SplitsAsWindowsProgramsDo)
{
    const std::pair<const char *, std::vector<std::string>> cases[] = {
        {"", {}},
        {R"("C:\Program Files\tool.exe" status)", {R"(C:\Program Files\tool.exe)", "status"}},
        {R"("C:\dir\"tool  a	b )", {R"(C:\dir\tool)", "a", "b"}},
        {R"(tool "C:\out dir\\" next)", {"tool", R"(C:\out dir\)", "next"}},
        {R"(tool a\\\"b "c d" e"f g"h)", {"tool", R"(a\"b)", "c d", "ef gh"}},
        {R"(tool "a""b" "" \\server)", {"tool", R"(a"b)", "", R"(\\server)"}},
        {R"(tool "never closed )", {"tool", "never closed "}},
        {R"(tool back\)", {"tool", R"(back\)"}},
    };
    for (const auto &[line, arguments] : cases)
        EXPECT_EQ(Platform::SplitCommandLine(line), arguments) << line;
}

TEST(RunCommand, GivesTheExitCodeOrTellsThatNothingStarted)
{
    const TemporaryDirectory directory;
    const std::string program = directory.Path("Fenrik(R) Cmd\xE4.exe");
    fs::copy_file(FENRIKCMD_PROGRAM, Platform::ToFilesystemPath(program));
    const std::pair<const char *, std::uint32_t> cases[] = {
        {"exit:0", 0},
        {"exit:255", 255},
        {"exit:3221225477", 3221225477 & EXIT_CODE_MASK},
        {"crash", ABORT_EXIT_CODE},
    };
    for (const auto &[fault, expected] : cases)
    {
        const EnvironmentSetting setting("FENRIKCMD_FAULT", fault);
        std::uint32_t exitCode = 77;
        EXPECT_TRUE(Platform::RunCommand('"' + program + "\" fenrikstatus", exitCode)) << fault;
        EXPECT_EQ(exitCode, expected) << fault;
    }
    WriteFile(directory.Path("not executable.exe"), "no program");
    for (const char *file : {"missing.exe", "not executable.exe", ""})
    {
        std::uint32_t exitCode = 77;
        EXPECT_FALSE(Platform::RunCommand('"' + directory.Path(file) + '"', exitCode)) << file;
        EXPECT_EQ(exitCode, 77U) << file;
    }
    std::uint32_t exitCode = 77;
    EXPECT_FALSE(Platform::RunCommand("", exitCode));
}

TEST(TextFile, LineFeedsAreWrittenAndReadAsPairs)
{
    const TemporaryDirectory directory;
    const std::string path = directory.Path("folder\\text");
    fs::create_directory(directory.Path("folder"));
    const std::string text = "\none\n\ntwo\rthree" + std::string(300000, 'x') + "\n";
    Platform::TextFileWriter writer;
    ASSERT_TRUE(writer.Open(path));
    EXPECT_TRUE(writer.Write(text));
    EXPECT_TRUE(writer.Close());
    EXPECT_FALSE(writer.Write("lost"));
    EXPECT_EQ(ReadFile(directory.Path("folder/text")), "\r\none\r\n\r\ntwo\rthree" + std::string(300000, 'x') + "\r\n");
    std::string read;
    EXPECT_TRUE(Platform::ReadTextFile(path, read));
    EXPECT_EQ(read, text);

    WriteFile(directory.Path("folder/text"), "a\r\r\n\rb\r");
    EXPECT_TRUE(Platform::ReadTextFile(path, read));
    EXPECT_EQ(read, "a\r\n\rb\r");
}

} // namespace
