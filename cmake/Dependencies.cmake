# The libraries the project builds on.
# libxml2's own package, where it has one, knows whether it is static and what that asks of those who link to it.
set(CMAKE_FIND_PACKAGE_PREFER_CONFIG ON)
find_package(LibXml2 REQUIRED)
set(CMAKE_FIND_PACKAGE_PREFER_CONFIG OFF)
find_package(nlohmann_json 3.7.0 REQUIRED)
find_package(CLI11 REQUIRED)
if(BIOSCONFIG_BUILD_TESTS)
  find_package(GTest REQUIRED)
endif()
if(BIOSCONFIG_BUILD_BENCHMARKS)
  find_package(benchmark REQUIRED)
endif()
