# The header-only libraries that ostrevin-host uses, CLI11 and nlohmann_json, from this system's packages, in a folder with
# nothing else in it: /usr/include itself must not be searched when compiling for another system.
#
# Sets OSTREVIN_HOST_PACKAGES: a folder in which find_package finds both.

find_path(OSTREVIN_CLI11_INCLUDE_DIR CLI/CLI.hpp)
ostrevin_macos_needs("CLI11's headers (package libcli11-dev)." OSTREVIN_CLI11_INCLUDE_DIR)
find_path(OSTREVIN_JSON_INCLUDE_DIR nlohmann/json.hpp)
ostrevin_macos_needs("nlohmann_json's headers (package nlohmann-json3-dev)." OSTREVIN_JSON_INCLUDE_DIR)

set(headers ${CMAKE_BINARY_DIR}/host-headers)
file(MAKE_DIRECTORY ${headers})
file(CREATE_LINK ${OSTREVIN_CLI11_INCLUDE_DIR}/CLI ${headers}/CLI SYMBOLIC)
file(CREATE_LINK ${OSTREVIN_JSON_INCLUDE_DIR}/nlohmann ${headers}/nlohmann SYMBOLIC)

set(OSTREVIN_HOST_PACKAGES ${CMAKE_BINARY_DIR}/host-packages)
foreach(package IN ITEMS CLI11::CLI11 nlohmann_json::nlohmann_json)
  string(REGEX REPLACE "::.*" "" name ${package})
  file(CONFIGURE OUTPUT ${OSTREVIN_HOST_PACKAGES}/${name}Config.cmake @ONLY CONTENT
"add_library(@package@ INTERFACE IMPORTED)
set_target_properties(@package@ PROPERTIES INTERFACE_INCLUDE_DIRECTORIES \"@headers@\")
")
  # Any version that this system packages.
  file(WRITE ${OSTREVIN_HOST_PACKAGES}/${name}ConfigVersion.cmake "set(PACKAGE_VERSION_COMPATIBLE TRUE)\n")
endforeach()
