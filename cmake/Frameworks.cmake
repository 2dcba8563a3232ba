# ostrevin::frameworks: what the plugin's code is compiled and linked against.
#   macOS: the system's frameworks.
#   elsewhere: our own headers under platform/include, over the system's Foundation and the block runtime, and the library
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
file(GLOB objc_runtime_dirs /usr/lib/gcc/*/*/include)
find_path(OBJC_RUNTIME_INCLUDE_DIR objc/objc.h HINTS ${objc_runtime_dirs} REQUIRED)
find_path(FOUNDATION_INCLUDE_DIR Foundation/Foundation.h PATHS /usr/include/GNUstep REQUIRED)
find_library(FOUNDATION_LIBRARY gnustep-base REQUIRED)
file(GLOB objc_library_dirs /usr/lib/gcc/*/*)
find_library(OBJC_LIBRARY objc HINTS ${objc_library_dirs} REQUIRED)
find_library(BLOCKS_LIBRARY BlocksRuntime REQUIRED)

target_include_directories(ostrevin_frameworks BEFORE INTERFACE ${CMAKE_SOURCE_DIR}/platform/include)
target_include_directories(ostrevin_frameworks SYSTEM INTERFACE ${FOUNDATION_INCLUDE_DIR})
target_compile_options(ostrevin_frameworks INTERFACE
  "SHELL:-idirafter ${OBJC_RUNTIME_INCLUDE_DIR}"
  "$<$<COMPILE_LANGUAGE:OBJCXX>:SHELL:-fobjc-runtime=gcc -fobjc-exceptions -fexceptions -fconstant-string-class=NSConstantString>")
target_compile_definitions(ostrevin_frameworks INTERFACE
  $<$<COMPILE_LANGUAGE:OBJCXX>:GNUSTEP>
  $<$<COMPILE_LANGUAGE:OBJCXX>:GNUSTEP_BASE_LIBRARY=1>
  $<$<COMPILE_LANGUAGE:OBJCXX>:GNU_RUNTIME=1>
  $<$<COMPILE_LANGUAGE:OBJCXX>:_NATIVE_OBJC_EXCEPTIONS>)
# The block runtime comes first: Foundation exports functions of the same names, which take a block that is still on the
# stack for one on the heap and do not copy it.
target_link_libraries(ostrevin_frameworks INTERFACE ${BLOCKS_LIBRARY} ${FOUNDATION_LIBRARY} ${OBJC_LIBRARY})
