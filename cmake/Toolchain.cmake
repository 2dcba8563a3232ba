# Language level, warnings and sanitizers for everything that is ours: link to ostrevin::settings.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_OBJCXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Programs and libraries find one another in the build tree and in an installed tree alike.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

set(OSTREVIN_SANITIZE "" CACHE STRING "Sanitizers for everything, such as address,undefined or thread")

add_library(ostrevin_settings INTERFACE)
add_library(ostrevin::settings ALIAS ostrevin_settings)
target_compile_options(ostrevin_settings INTERFACE -Wall -Wextra -Werror)
# The build type of the sanitizer presets: enough for a readable stack, and quick to compile.
foreach(language IN ITEMS C CXX OBJCXX)
  set(CMAKE_${language}_FLAGS_SANITIZE "-O1 -gline-tables-only")
endforeach()
if(APPLE)
  # With a later deployment target than our own, more is deprecated; docs/macos.md names it.
  target_compile_options(ostrevin_settings INTERFACE -Wno-error=deprecated-declarations)
endif()
if(OSTREVIN_SANITIZE)
  add_compile_options(-fsanitize=${OSTREVIN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${OSTREVIN_SANITIZE})
endif()

# A library whose symbols must all be found when it is linked. Not with sanitizers: their functions are in programs only.
set(OSTREVIN_NO_UNDEFINED_SYMBOLS "")
if(NOT APPLE AND NOT OSTREVIN_SANITIZE)
  set(OSTREVIN_NO_UNDEFINED_SYMBOLS -Wl,-z,defs)
endif()
