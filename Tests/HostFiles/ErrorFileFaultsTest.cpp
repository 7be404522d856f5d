// What becomes of links, rights and entries when the error file is written, and when a process is killed meanwhile.

#include "ErrorFile.h"
#include "FailingCalls.h"
#include "KilledProcess.h"
#include "TestSupport.h"

#include <cerrno>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

namespace
{

namespace fs = std::filesystem;
using namespace TestSupport;

class ErrorFileFaultsTest : public testing::Test
{
protected:
    Status Write() const { return WriteErrorEntry(m_path.c_str(), "M", "T", "f", "7", "d"); }

    /// The entries of the file, which has to be whole.
    static long Entries(const std::string &text)
    {
        EXPECT_TRUE(text.ends_with("</Error></Tool>\n")) << text;
        long entries = 0;
        for (std::size_t at = text.find("<Error>"); at != std::string::npos; at = text.find("<Error>", at + 1))
            ++entries;
        return entries;
    }

    TemporaryDirectory m_directory;
    std::string m_path = m_directory.Path("Error.xml");
};

TEST_F(ErrorFileFaultsTest, AFileStaysWhatItIs)
{
    const std::string target = m_directory.Path("real.xml");
    WriteFile(target, "<Tool/>");
    fs::permissions(target, static_cast<fs::perms>(0666));
    fs::create_symlink("real.xml", m_path);
    EXPECT_EQ(Write(), StatusCode::Success);
    EXPECT_TRUE(fs::is_symlink(m_path));
    EXPECT_EQ(fs::status(target).permissions(), static_cast<fs::perms>(0666));
    EXPECT_EQ(Entries(ReadFile(target)), 1);

    // A new owner that the system refuses: the file is written in place, and keeps the one it has.
    FailCall(SystemCall::ChangeOwner, 1, EPERM);
    EXPECT_EQ(Write(), StatusCode::Success);
    FailCall(SystemCall::ChangeOwner, 0, 0);
    EXPECT_EQ(Entries(ReadFile(target)), 2);

    // A link that leads to nothing yet.
    fs::remove(target);
    EXPECT_EQ(Write(), StatusCode::Success);
    EXPECT_TRUE(fs::is_symlink(m_path));
    EXPECT_EQ(Entries(ReadFile(target)), 1);
}

/// A few dozen kills; ERROR_FILE_KILLS asks for more.
TEST_F(ErrorFileFaultsTest, AKilledWriterLosesNothingThatItHasWritten)
{
    const char *const wanted = std::getenv("ERROR_FILE_KILLS");
    const int kills = wanted ? std::atoi(wanted) : 30;
    std::mt19937 random(std::random_device{}());
    ASSERT_EQ(Write(), StatusCode::Success);
    long acknowledged = 1;
    for (int count = 0; count < kills; ++count)
    {
        const auto write = [this](const std::function<void()> &done)
        {
            while (Write() == StatusCode::Success)
                done();
        };
        acknowledged += CountUntilKilled(write, 2000 + static_cast<unsigned>(random() % 20000));
        const long entries = Entries(ReadFile(m_path));
        ASSERT_GE(entries, acknowledged);
        ASSERT_LE(entries, acknowledged + 1);
        acknowledged = entries;
    }
    EXPECT_GT(acknowledged, 1);
    EXPECT_EQ(Write(), StatusCode::Success);
}

} // namespace
