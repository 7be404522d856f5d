#include "Platform.h"

#include "CommandLine.h"
#include "FilesystemPath.h"
#include "TestSupport.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace
{

namespace fs = std::filesystem;
using namespace TestSupport;

TEST(CommandLine, SplitsAsWindowsProgramsDo)
{
    const std::pair<const char *, std::vector<std::string>> cases[] = {
        {"", {}},
        {"tool", {"tool"}},
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
        {"exit:1", 1},
        {"exit:2", 2},
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
    EXPECT_EQ(ReadFile(directory.Path("folder/text")), "\r\none\r\n\r\ntwo\rthree" + std::string(300000, 'x') + "\r\n");
    std::string read;
    EXPECT_TRUE(Platform::ReadTextFile(path, read));
    EXPECT_EQ(read, text);

    WriteFile(directory.Path("folder/text"), "a\r\r\n\rb\r");
    EXPECT_TRUE(Platform::ReadTextFile(path, read));
    EXPECT_EQ(read, "a\r\n\rb\r");
}

TEST(TextFile, WhatIsNoFileCannotBeOpened)
{
    const TemporaryDirectory directory;
    for (const std::string &path : {directory.Path("missing"), directory.Path("")})
    {
        std::string text = "before";
        EXPECT_FALSE(Platform::ReadTextFile(path, text));
        EXPECT_EQ(text, "before");
    }
    Platform::TextFileWriter writer;
    EXPECT_FALSE(writer.Open(directory.Path("no folder/text")));
    EXPECT_FALSE(writer.Write("lost"));
}

TEST(Directory, IsMadeOnceAndOnlyBelowAnother)
{
    using Platform::DirectoryOutcome;
    const TemporaryDirectory directory;
    EXPECT_EQ(Platform::MakeDirectory(directory.Path("out")), DirectoryOutcome::Made);
    EXPECT_EQ(Platform::MakeDirectory(directory.Path("out")), DirectoryOutcome::Existed);
    EXPECT_EQ(Platform::MakeDirectory(directory.Path("none\\out")), DirectoryOutcome::Failed);
}

TEST(Mutex, CanBeTakenAgainByItsHolderOnly)
{
    const Platform::MutexHandle mutex = Platform::MakeMutex("PlatformTest");
    int count = 0;
    const auto work = [&]
    {
        for (int round = 0; round < 5000; ++round)
        {
            const Platform::MutexLock outer(mutex);
            const Platform::MutexLock inner(mutex);
            ++count;
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(count, 10000);
    Platform::CloseMutex(mutex);
    EXPECT_FALSE(Platform::WaitMutex(nullptr));
}

TEST(FileLock, KeepsOthersAwayForTheTimeTheyWait)
{
    const TemporaryDirectory directory;
    const auto isGranted = [&directory](const char *name)
    {
        bool granted = false;
        std::thread([&] { granted = static_cast<bool>(Platform::FileLock(directory.Path(name), 20)); }).join();
        return granted;
    };
    {
        const Platform::FileLock lock(directory.Path("file"), 0);
        EXPECT_TRUE(lock);
        EXPECT_FALSE(isGranted("file"));
    }
    EXPECT_TRUE(isGranted("file"));
    EXPECT_TRUE(isGranted("no folder/file"));
}

TEST(Utf8ToUtf16, ReplacesEveryIllFormedPart)
{
    const std::pair<std::string, std::u16string> cases[] = {
        {std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
        {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", u"\u00E9\u20AC\U0001F600"},
        {"\xE9", u"\uFFFD"},
        {"\xE2\x82z", u"\uFFFDz"},
        {"\xC0\xAF", u"\uFFFD\uFFFD"}, // too long for what it says
        {"\xF0\x9F\x98", u"\uFFFD"},
    };
    for (const auto &[text, units] : cases)
        EXPECT_EQ(Platform::Utf8ToUtf16(text), units) << text;
    // The systems differ in how many it is: beyond the last character, a surrogate.
    for (const char *const text : {"\xF4\x90\x80\x80", "\xED\xA0\x80"})
        EXPECT_EQ(Platform::Utf8ToUtf16(text).find_first_not_of(u'\uFFFD'), std::u16string::npos) << text;
}

} // namespace
