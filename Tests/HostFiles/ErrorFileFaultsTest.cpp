// What becomes of the error file when the system fails, and when a process is killed while it writes.

#include "ErrorFile.h"
#include "FailingCalls.h"
#include "KilledProcess.h"
#include "TestSupport.h"

#include <algorithm>
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

TEST_F(ErrorFileFaultsTest, OneFailedCallLosesNoEntry)
{
    const struct
    {
        SystemCall call;
        std::vector<int> errors;
        int leastCalls;
        /// Whether the entry gets there all the same.
        bool harmless;
    } faults[] = {
        {SystemCall::Open, {EIO, EINTR, ENFILE, ESTALE, ENOMEM, ELOOP, EACCES}, 2, false},
        {SystemCall::Read, {EBADF}, 1, false},
        {SystemCall::Create, {EACCES, EROFS}, 1, true},
        {SystemCall::Create, {ENOSPC, EMFILE}, 1, false},
        {SystemCall::Write, {EBADF}, 1, false},
        {SystemCall::Sync, {EIO}, 1, false},
        {SystemCall::Rename, {EACCES, EBUSY}, 1, true},
    };
    for (int count = 0; count < 3; ++count)
        ASSERT_EQ(Write(), StatusCode::Success);
    const std::string before = ReadFile(m_path);
    const std::string entries = before.substr(0, before.rfind("</Tool>"));
    for (const auto &[call, errors, leastCalls, harmless] : faults)
    {
        for (const int error : errors)
        {
            int position = 1;
            for (;; ++position)
            {
                SCOPED_TRACE(std::to_string(static_cast<int>(call)) + " " + std::to_string(position) + " " +
                             std::to_string(error));
                WriteFile(m_path, before);
                FailCall(call, position, error);
                const Status status = Write();
                const bool failed = CallsSeen() >= position;
                FailCall(call, 0, 0);
                const std::string after = ReadFile(m_path);
                EXPECT_TRUE(after.starts_with(entries)) << after;
                EXPECT_EQ(Entries(after), status == StatusCode::Success ? 4 : 3);
                EXPECT_TRUE(status == StatusCode::Success || !harmless) << status;
                // A disk that takes no new file would not take the old one again either.
                EXPECT_FALSE(status == StatusCode::Success && failed && !harmless && call == SystemCall::Create);
                EXPECT_EQ(std::distance(fs::directory_iterator(m_directory.Path("")), {}), 1);
                if (!failed)
                    break;
            }
            EXPECT_GT(position, leastCalls);
        }
    }
}

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
