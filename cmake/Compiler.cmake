# How everything of the project is compiled and linked; each compiler gets the options it knows.
include(CheckCXXSourceCompiles)

option(BIOSCONFIG_WARNINGS_AS_ERRORS "Let a warning stop the build" OFF)
if(BIOSCONFIG_WARNINGS_AS_ERRORS)
  set(CMAKE_COMPILE_WARNING_AS_ERROR ON)
endif()

# Options and a linker as GCC has them; a Clang that stands in for Microsoft's compiler has neither.
set(like_gcc OFF)
if(CMAKE_CXX_COMPILER_ID MATCHES "^(GNU|Clang)$" AND NOT CMAKE_CXX_SIMULATE_ID STREQUAL "MSVC")
  set(like_gcc ON)
endif()

if(like_gcc)
  # System headers stay silent.
  add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion)
  # GCC 12 sees overlapping copies where an optimised build puts texts together with +; there are none.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  # To GCC the sign is no part of -Wconversion.
  add_compile_options($<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>)
  # Source paths in binaries are relative to the project, so two builds of one commit are the same bytes.
  add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
  add_compile_options(-ffunction-sections -fdata-sections)
elseif(MSVC)
  add_compile_options(/W4 /utf-8 /Zc:__cplusplus $<$<CXX_COMPILER_ID:MSVC>:/Zc:preprocessor>)
endif()

# What makes an error in handling memory harder to exploit; check-hardening.sh looks for it in the files.
if(like_gcc AND WIN32)
  add_link_options(LINKER:--dynamicbase,--nxcompat,--high-entropy-va)
elseif(like_gcc)
  add_compile_options(-fstack-protector-strong)
  add_link_options(LINKER:-z,relro,-z,now)
  # Some distributions' compilers define it by themselves when they optimise, perhaps higher.
  set(CMAKE_REQUIRED_FLAGS -O2)
  check_cxx_source_compiles("#ifndef _FORTIFY_SOURCE\n#error\n#endif\nint main() {}" COMPILER_FORTIFIES)
  unset(CMAKE_REQUIRED_FLAGS)
  if(NOT COMPILER_FORTIFIES)
    add_compile_definitions($<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:_FORTIFY_SOURCE=2>)
  endif()
endif()

if(like_gcc AND WIN32)
  # Programs and libraries bring the compiler's run-time parts within themselves.
  add_link_options(-static)
endif()

if(WIN32)
  set(CMAKE_SHARED_LIBRARY_PREFIX "")
  set(export_attribute "__declspec(dllexport)")
elseif(like_gcc)
  set(export_attribute "__attribute__((visibility(\"default\")))")
endif()
