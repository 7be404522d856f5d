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
if(NOT WIN32)
  # The manual page and the completions, made by the program itself.
  set(made ${CMAKE_BINARY_DIR}/made)
  if(NOT CMAKE_CROSSCOMPILING)
    add_custom_command(OUTPUT ${made}/biosconfig.1 ${made}/biosconfig ${made}/_biosconfig ${made}/biosconfig.fish
      COMMAND ${CMAKE_COMMAND} -E make_directory ${made}
      COMMAND biosconfig manual-page -o ${made}/biosconfig.1
      COMMAND biosconfig completion bash -o ${made}/biosconfig
      COMMAND biosconfig completion zsh -o ${made}/_biosconfig
      COMMAND biosconfig completion fish -o ${made}/biosconfig.fish
      DEPENDS biosconfig VERBATIM)
    add_custom_target(MadeByBiosconfig ALL DEPENDS ${made}/biosconfig.1)
    install(FILES ${made}/biosconfig.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES ${made}/biosconfig DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install(FILES ${made}/_biosconfig DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
    install(FILES ${made}/biosconfig.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
  endif()
endif()
install(TARGETS FenrikCmd DESTINATION ${stand_in_place})
if(BIOSCONFIG_WINDOWS_LIBRARIES)
  install(DIRECTORY ${BIOSCONFIG_WINDOWS_LIBRARIES}/share/copyright/ DESTINATION Docs/ThirdParty)
endif()
install(DIRECTORY Include/ DESTINATION ${header_place})
install(FILES README.md CHANGELOG.md DESTINATION ${readme_place})
install(DIRECTORY Docs DESTINATION ${readme_place})

# The collection for Ansible, as its own tool packs it; where that tool is not, the folder.
if(NOT WIN32)
  set(collection_place ${CMAKE_INSTALL_DATADIR}/BiosConfigModule)
  configure_file(cmake/install-collection.cmake.in install-collection.cmake @ONLY)
  install(SCRIPT ${CMAKE_BINARY_DIR}/install-collection.cmake)
endif()

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
