// What a host of a POSIX system may do, and what may stand where a file is expected.

#include "Platform.h"
#include "TestSupport.h"

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

using namespace TestSupport;

std::uint32_t ExitCodeOf(const char *fault)
{
    const EnvironmentSetting setting("FENRIKCMD_FAULT", fault);
    std::uint32_t exitCode = 77;
    EXPECT_TRUE(Platform::RunCommand("\"" FENRIKCMD_PROGRAM "\" fenrikstatus", exitCode)) << fault;
    return exitCode;
}

void ExpectExitCodes()
{
    for (int round = 0; round < 5; ++round)
    {
        EXPECT_EQ(ExitCodeOf("exit:3"), 3U);
        EXPECT_EQ(ExitCodeOf("crash"), Platform::kUnknownExitCode);
    }
}

TEST(RunCommand, HasTheExitCodeWhateverTheHostDoesWithItsChildren)
{
    ExpectExitCodes();
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child is left";

    std::signal(SIGCHLD, SIG_IGN);
    ExpectExitCodes();
    EXPECT_EQ(std::signal(SIGCHLD, SIG_DFL), SIG_IGN) << "the host's signal handling has changed";

    std::atomic<bool> ends = false;
    std::thread reaper(
        [&ends]
        {
            while (!ends)
                waitpid(-1, nullptr, WNOHANG);
        });
    ExpectExitCodes();
    ends = true;
    reaper.join();

    // A signal that has a handler interrupts the wait, and goes on waiting behind it.
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, nullptr);
    const itimerval often = {{0, 500}, {0, 500}}, never = {};
    setitimer(ITIMER_REAL, &often, nullptr);
    ExpectExitCodes();
    setitimer(ITIMER_REAL, &never, nullptr);
}

TEST(OpenStream, TakesAPipeOrADeviceForNoFile)
{
    const TemporaryDirectory directory;
    const std::string pipe = directory.Path("pipe"), link = directory.Path("link");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    ASSERT_EQ(symlink(pipe.c_str(), link.c_str()), 0);
    for (const std::string &path : {pipe, link, std::string("/dev/null"), directory.Path("")})
    {
        for (const char *const mode : {"rb", "wb", "a", "r+b"})
            EXPECT_EQ(Platform::OpenStream(path, mode), nullptr) << path << ' ' << mode;
        std::string text;
        EXPECT_FALSE(Platform::ReadTextFile(path, text));
        EXPECT_TRUE(Platform::IsThere(path));
    }
    using Platform::StreamKind;
    EXPECT_NE(Platform::OpenStream("/dev/null", "wb", StreamKind::WaitingFile), nullptr);
    EXPECT_EQ(Platform::OpenStream(pipe, "wb", StreamKind::AnyFile), nullptr); // nobody reads
    const Platform::StreamOwner reader = Platform::OpenStream(pipe, "rb", StreamKind::AnyFile);
    const Platform::StreamOwner writer = Platform::OpenStream(pipe, "wb", StreamKind::AnyFile);
    ASSERT_TRUE(reader && writer);
    EXPECT_EQ(fcntl(fileno(writer.get()), F_GETFL) & O_NONBLOCK, 0);
}

TEST(LocalTime, FollowsTheTimeZone)
{
    for (const auto &[zone, hour] : {std::pair("UTC0", 0), std::pair("ABC-5", 5), std::pair("UTC0", 0)})
    {
        const EnvironmentSetting setting("TZ", zone);
        std::tm local = {};
        EXPECT_TRUE(Platform::LocalTime(0, local));
        EXPECT_EQ(local.tm_hour, hour) << zone;
    }
}

} // namespace
