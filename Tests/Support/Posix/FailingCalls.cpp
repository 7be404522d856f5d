#include "FailingCalls.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <stdio_ext.h>
#include <sys/file.h>
#include <unistd.h>

namespace
{

SystemCall failingCall;
int failingPosition = 0;
int failingError = 0;
int seen = 0;

bool Fails(SystemCall call)
{
    if (call != failingCall || failingPosition == 0)
        return false;
    const bool fails = ++seen == failingPosition;
    if (fails)
        errno = failingError;
    return fails;
}

template <typename Function>
Function *Next(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

bool IsConsole(std::FILE *stream)
{
    return stream == stdout || stream == stderr;
}

/// Does something with a stream whose file is closed meanwhile, so that it fails as a stream fails.
template <typename Work>
std::size_t WithoutDescriptor(std::FILE *stream, const Work &work)
{
    const int descriptor = dup(fileno(stream));
    close(fileno(stream));
    const std::size_t done = work();
    dup2(descriptor, fileno(stream));
    close(descriptor);
    return done;
}

/// Whether what has been written to a stream is to fail; it is lost then, and the stream has an error, as on a full
/// disk.
bool FailsToFlush(std::FILE *stream)
{
    if (IsConsole(stream) || !Fails(SystemCall::Write))
        return false;
    WithoutDescriptor(stream, [stream] { return static_cast<std::size_t>(std::fflush(stream)); });
    __fpurge(stream);
    return true;
}

} // namespace

void FailCall(SystemCall call, int position, int error)
{
    failingCall = call;
    failingPosition = position;
    failingError = error;
    seen = 0;
}

int CallsSeen()
{
    return seen;
}

// The program's own definitions stand before those of the C library.
extern "C"
{
    int open(const char *path, int flags, ...)
    {
        std::va_list arguments;
        va_start(arguments, flags);
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
        va_end(arguments);
        const bool isNew = (flags & O_EXCL) != 0;
        if ((flags & O_DIRECTORY) == 0 && Fails(isNew ? SystemCall::Create : SystemCall::Open))
            return -1;
        return Next<int(const char *, int, ...)>("open")(path, flags, mode);
    }

    std::size_t fread(void *bytes, std::size_t size, std::size_t count, std::FILE *stream)
    {
        const auto read = [&] { return Next<decltype(fread)>("fread")(bytes, size, count, stream); };
        return Fails(SystemCall::Read) ? WithoutDescriptor(stream, read) : read();
    }

    std::size_t fwrite(const void *bytes, std::size_t size, std::size_t count, std::FILE *stream)
    {
        const std::size_t written = Next<decltype(fwrite)>("fwrite")(bytes, size, count, stream);
        return FailsToFlush(stream) ? 0 : written;
    }

    int fputs(const char *text, std::FILE *stream)
    {
        const int result = Next<decltype(fputs)>("fputs")(text, stream);
        return FailsToFlush(stream) ? EOF : result;
    }

    int fclose(std::FILE *stream)
    {
        const bool fails = Fails(SystemCall::Close);
        if (fails)
            __fpurge(stream); // what is still to be written gets lost
        const int result = Next<decltype(fclose)>("fclose")(stream);
        return fails ? EOF : result;
    }

    int fsync(int descriptor)
    {
        return Fails(SystemCall::Sync) ? -1 : Next<decltype(fsync)>("fsync")(descriptor);
    }

    int rename(const char *from, const char *to)
    {
        return Fails(SystemCall::Rename) ? -1 : Next<decltype(rename)>("rename")(from, to);
    }

    int fchown(int descriptor, uid_t owner, gid_t group)
    {
        return Fails(SystemCall::ChangeOwner) ? -1 : Next<decltype(fchown)>("fchown")(descriptor, owner, group);
    }

    int flock(int descriptor, int operation)
    {
        return Fails(SystemCall::Lock) ? -1 : Next<decltype(flock)>("flock")(descriptor, operation);
    }
}
