// What a host of a POSIX system may do with its children and signals.

#include "Platform.h"
#include "TestSupport.h"

#include <atomic>
#include <csignal>
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

TEST(Files, OfTheirOwnerAloneAreSoFromTheStart)
{
    const TestSupport::TemporaryDirectory directory;
    TestSupport::WriteFile(directory.Path("open"), "for all");
    std::filesystem::permissions(directory.Path("open"), std::filesystem::perms(0666));
    const Platform::StreamOwner stream =
        Platform::CreateStream(directory.Path("secret"), Platform::FileAccess::OwnerOnly);
    ASSERT_TRUE(stream);
    EXPECT_TRUE(Platform::IsRestrictedToOwner(stream.get()));
    EXPECT_TRUE(Platform::CopyOwnership(directory.Path("open"), stream.get(), Platform::FileAccess::OwnerOnly));
    EXPECT_TRUE(Platform::IsRestrictedToOwner(stream.get()));
    EXPECT_TRUE(Platform::CopyOwnership(directory.Path("open"), stream.get()));
    EXPECT_FALSE(Platform::IsRestrictedToOwner(stream.get()));
    const Platform::FilesForOwnerOnly untilEnd;
    EXPECT_TRUE(Platform::IsRestrictedToOwner(Platform::OpenStream(directory.Path("new"), "wb").get()));
}

} // namespace
