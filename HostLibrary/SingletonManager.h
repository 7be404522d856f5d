#pragma once

/// The beginning of the object that the host shares with all of its modules. Each field has the size of a pointer.
struct SingletonInstance
{
    void *reserved;
    /// The system's mutex (see Platform.h) that everything in the process holds while it writes Error.xml.
    void *errorFileMutex;
};

/// The library's own build says here how an export is marked.
#ifndef SINGLETON_MANAGER_EXPORT
#define SINGLETON_MANAGER_EXPORT
#endif

/// The process-wide object, owned by the library; null when it could not be made. The host and all modules link to the
/// one library.
extern "C" SINGLETON_MANAGER_EXPORT SingletonInstance *getSingletonInstance();
