#include "SingletonManager.h"

#include "Platform.h"

namespace
{

/// Lives as long as the process, so that no module's report finds the mutex closed.
SingletonInstance *MakeInstance()
{
    Platform::StayLoaded();
    static SingletonInstance instance = {};
    instance.errorFileMutex = Platform::MakeMutex(nullptr);
    return instance.errorFileMutex ? &instance : nullptr;
}

} // namespace

SingletonInstance *getSingletonInstance()
{
    static SingletonInstance *const instance = MakeInstance();
    return instance;
}
