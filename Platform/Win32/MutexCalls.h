#pragma once

// Part of Platform.h, which declares them: WaitMutex and ReleaseMutexHold stand in Platform.cpp. A call of the system
// takes many times as long as the one around it.
