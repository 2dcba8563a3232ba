# ostrevin::frameworks: what the plugin's code is compiled and linked against.
#   macOS: the system's frameworks.
#   elsewhere: our own headers under platform/include, over the system's Foundation and our block run-time, and the library
#   that platform/ builds.
add_library(ostrevin_frameworks INTERFACE)
add_library(ostrevin::frameworks ALIAS ostrevin_frameworks)
target_compile_options(ostrevin_frameworks INTERFACE -fblocks)

if(APPLE)
  foreach(name IN ITEMS CoreFoundation Foundation AppKit CoreGraphics ColorSync IOKit)
    target_link_options(ostrevin_frameworks INTERFACE "SHELL:-framework ${name}")
  endforeach()
  target_link_options(ostrevin_frameworks INTERFACE -lobjc)
  return()
endif()

# The Objective-C runtime's headers are the GCC compiler's; searched last, so that clang's own headers come first.
file(GLOB objc_runtime_dirs ${CMAKE_SYSROOT}/usr/lib/gcc/*/*/include)
find_path(OBJC_RUNTIME_INCLUDE_DIR objc/objc.h HINTS ${objc_runtime_dirs} REQUIRED)
# gnustep-config knows this system's folders, not those of a system that is built for.
if(NOT CMAKE_CROSSCOMPILING)
  execute_process(COMMAND gnustep-config --variable=GNUSTEP_SYSTEM_HEADERS
    OUTPUT_VARIABLE foundation_headers OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
find_path(FOUNDATION_INCLUDE_DIR Foundation/Foundation.h HINTS ${foundation_headers} PATH_SUFFIXES GNUstep REQUIRED)
find_library(FOUNDATION_LIBRARY gnustep-base REQUIRED)
file(GLOB objc_library_dirs ${CMAKE_SYSROOT}/usr/lib/gcc/*/*)
find_library(OBJC_LIBRARY objc HINTS ${objc_library_dirs} REQUIRED)

add_library(ostrevin_foundation INTERFACE)
target_include_directories(ostrevin_foundation BEFORE INTERFACE ${CMAKE_SOURCE_DIR}/platform/include)
target_include_directories(ostrevin_foundation SYSTEM INTERFACE ${FOUNDATION_INCLUDE_DIR})
target_compile_options(ostrevin_foundation INTERFACE -fblocks
  "SHELL:-idirafter ${OBJC_RUNTIME_INCLUDE_DIR}"
  "$<$<COMPILE_LANGUAGE:OBJCXX>:SHELL:-fobjc-runtime=gcc -fobjc-exceptions -fexceptions -fconstant-string-class=NSConstantString>")
target_compile_definitions(ostrevin_foundation INTERFACE
  $<$<COMPILE_LANGUAGE:OBJCXX>:GNUSTEP>
  $<$<COMPILE_LANGUAGE:OBJCXX>:GNUSTEP_BASE_LIBRARY=1>
  $<$<COMPILE_LANGUAGE:OBJCXX>:GNU_RUNTIME=1>
  $<$<COMPILE_LANGUAGE:OBJCXX>:_NATIVE_OBJC_EXCEPTIONS>)
target_link_libraries(ostrevin_foundation INTERFACE ${FOUNDATION_LIBRARY} ${OBJC_LIBRARY})

# Inside every library and program of ours, and before Foundation on the link line, which has functions of the same names.
add_library(ostrevin_blocks STATIC ${CMAKE_SOURCE_DIR}/platform/blocks/block_runtime.mm)
target_link_libraries(ostrevin_blocks PRIVATE ostrevin_foundation ostrevin::hardened)

target_link_libraries(ostrevin_frameworks INTERFACE ostrevin_blocks ostrevin_foundation)
