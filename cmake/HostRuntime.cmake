# host_runtime(<variable>): what a module and its host have to have in common, because they exchange objects of the
# standard library and free each other's memory: the compiler's kind and, on Windows, the C library. The build asks it
# for the module, the installed package for the host.
include(CheckCXXSourceCompiles)

function(host_runtime variable)
  if(MSVC OR CMAKE_CXX_SIMULATE_ID STREQUAL "MSVC")
    set(runtime "MSVC")
  elseif(WIN32)
    set(CMAKE_REQUIRED_QUIET ON)
    check_cxx_source_compiles("#include <string>\n#ifndef _UCRT\n#error\n#endif\nint main() {}" BIOSCONFIG_HOST_HAS_UCRT)
    if(BIOSCONFIG_HOST_HAS_UCRT)
      set(runtime "GCC with ucrtbase.dll")
    else()
      set(runtime "GCC with msvcrt.dll")
    endif()
  else()
    set(runtime "GCC")
  endif()
  set(${variable} ${runtime} PARENT_SCOPE)
endfunction()
