# The libraries that ostrevin-host uses.
#
# OSTREVIN_HOST_PACKAGES: a folder in which find_package finds CLI11 and nlohmann_json. They are headers only, and come from
# this system's packages, through a folder with nothing else in it: /usr/include itself must not be searched when compiling
# for another system.
# OSTREVIN_FFI_LIBRARY: libffi, which is part of macOS. An SDK says which symbols it has; for one that leaves that out, the
# symbols that its header declares and ostrevin-host uses are written down here.

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

set(OSTREVIN_FFI_LIBRARY ${MACOS_SDK}/usr/lib/libffi.tbd)
if(NOT EXISTS ${OSTREVIN_FFI_LIBRARY})
  set(OSTREVIN_FFI_LIBRARY ${CMAKE_BINARY_DIR}/host-packages/libffi.tbd)
  set(symbols _ffi_prep_cif _ffi_call _ffi_closure_alloc _ffi_closure_free _ffi_prep_closure_loc)
  foreach(type IN ITEMS void uint8 sint8 uint16 sint16 uint32 sint32 uint64 sint64 float double pointer)
    list(APPEND symbols _ffi_type_${type})
  endforeach()
  list(JOIN symbols ", " symbols)
  file(WRITE ${OSTREVIN_FFI_LIBRARY} "--- !tapi-tbd
tbd-version:     4
targets:         [ x86_64-macos, arm64-macos ]
install-name:    '/usr/lib/libffi.dylib'
exports:
  - targets:         [ x86_64-macos, arm64-macos ]
    symbols:         [ ${symbols} ]
...
")
endif()
