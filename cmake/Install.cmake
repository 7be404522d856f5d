# What an installation and the packages hold. On Windows everything that runs lies in one folder, as its loader wants it.
include(CMakePackageConfigHelpers)

if(WIN32)
  set(header_place Include)
  set(readme_place .)
  set(stand_in_place StandIn)
else()
  set(header_place ${CMAKE_INSTALL_INCLUDEDIR}/BiosConfigModule)
  set(readme_place ${CMAKE_INSTALL_DOCDIR})
  set(stand_in_place ${CMAKE_INSTALL_LIBEXECDIR}/BiosConfigModule)
endif()
set(package_place ${CMAKE_INSTALL_LIBDIR}/cmake/BiosConfigModule)

target_include_directories(Headers INTERFACE $<INSTALL_INTERFACE:${header_place}>)

install(TARGETS Headers BiosConfigModule SingletonManager biosconfig EXPORT BiosConfigModule)
install(TARGETS FenrikCmd DESTINATION ${stand_in_place})
if(BIOSCONFIG_WINDOWS_LIBRARIES)
  install(DIRECTORY ${BIOSCONFIG_WINDOWS_LIBRARIES}/share/copyright/ DESTINATION Docs/ThirdParty)
endif()
install(DIRECTORY Include/ DESTINATION ${header_place})
install(FILES README.md CHANGELOG.md DESTINATION ${readme_place})
install(DIRECTORY Docs DESTINATION ${readme_place})

install(EXPORT BiosConfigModule NAMESPACE BiosConfigModule:: FILE BiosConfigModuleTargets.cmake
  DESTINATION ${package_place})
configure_file(cmake/BiosConfigModuleConfig.cmake.in BiosConfigModuleConfig.cmake @ONLY)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/BiosConfigModuleConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/BiosConfigModuleConfig.cmake
  ${CMAKE_BINARY_DIR}/BiosConfigModuleConfigVersion.cmake cmake/HostRuntime.cmake DESTINATION ${package_place})

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_SYSTEM_NAME win64)
else()
  set(CPACK_GENERATOR TGZ)
  set(CPACK_SYSTEM_NAME linux-${CMAKE_SYSTEM_PROCESSOR})
endif()
set(CPACK_PACKAGE_VENDOR "BIOS configuration module")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
