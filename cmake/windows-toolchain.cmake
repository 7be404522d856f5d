# 64-bit Windows, built on Debian or Ubuntu with MinGW-w64 and tried under Wine; cmake/windows-libraries.sh provides
# the libraries.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The posix variant is the one with std::thread and std::mutex.
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Libraries and headers come from this one place and the compiler's own; those of the building machine are not looked at.
set(BIOSCONFIG_WINDOWS_LIBRARIES "${CMAKE_CURRENT_LIST_DIR}/../build/windows-libraries/prefix"
    CACHE PATH "Where cmake/windows-libraries.sh put the libraries")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES BIOSCONFIG_WINDOWS_LIBRARIES)
set(CMAKE_FIND_ROOT_PATH "${BIOSCONFIG_WINDOWS_LIBRARIES}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/run-with-wine.sh")
