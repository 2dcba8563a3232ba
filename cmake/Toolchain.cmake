# Language level, warnings and sanitizers for everything that is ours: link to ostrevin::settings. Warnings are errors in the
# presets for developers, and in every build where the environment has CI; see scripts/build.
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

option(OSTREVIN_COVERAGE "Count which lines and branches of the plugin run" OFF)
set(OSTREVIN_SANITIZE "" CACHE STRING "Sanitizers for everything, such as address,undefined or thread")

add_library(ostrevin_settings INTERFACE)
add_library(ostrevin::settings ALIAS ostrevin_settings)
target_compile_options(ostrevin_settings INTERFACE -Wall -Wextra)
# Members that a designated initialiser leaves out are meant to be empty; some compilers have a warning for that in -Wextra.
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
set(CMAKE_REQUIRED_FLAGS "-Wextra -Werror")
check_cxx_source_compiles("
  struct Text { Text() {} };
  struct Named { int number; Text name; };
  int main() { return Named{.number = 0}.number; }" OSTREVIN_DESIGNATED_INITIALISERS_MAY_LEAVE_OUT)
unset(CMAKE_REQUIRED_FLAGS)
if(NOT OSTREVIN_DESIGNATED_INITIALISERS_MAY_LEAVE_OUT)
  target_compile_options(ostrevin_settings INTERFACE -Wno-missing-field-initializers)
endif()
# Debugging information for readable stacks, and no more: the whole of it takes a quarter of the time to compile. Sanitize
# is the build type of the sanitizer presets.
foreach(language IN ITEMS C CXX OBJCXX)
  set(CMAKE_${language}_FLAGS_RELWITHDEBINFO "-O2 -gline-tables-only -DNDEBUG")
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

# What is installed is built so that a mistake stops the process before it can be made use of: link to ostrevin::hardened.
# Sanitizers bring their own checks, and fortified functions hide calls from them.
add_library(ostrevin_hardened INTERFACE)
add_library(ostrevin::hardened ALIAS ostrevin_hardened)
target_link_libraries(ostrevin_hardened INTERFACE ostrevin::settings)
target_compile_options(ostrevin_hardened INTERFACE -fstack-protector-strong)
if(NOT OSTREVIN_SANITIZE)
  target_compile_options(ostrevin_hardened INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
endif()
if(APPLE)
  target_compile_definitions(ostrevin_hardened INTERFACE _LIBCPP_HARDENING_MODE=_LIBCPP_HARDENING_MODE_FAST)
else()
  set(CMAKE_REQUIRED_FLAGS -Werror)  # clang 14 warns that it has none for arm64
  check_cxx_compiler_flag(-fstack-clash-protection OSTREVIN_HAS_STACK_CLASH_PROTECTION)
  unset(CMAKE_REQUIRED_FLAGS)
  if(OSTREVIN_HAS_STACK_CLASH_PROTECTION)
    target_compile_options(ostrevin_hardened INTERFACE -fstack-clash-protection)
  endif()
  target_compile_definitions(ostrevin_hardened INTERFACE _GLIBCXX_ASSERTIONS)
  target_link_options(ostrevin_hardened INTERFACE -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endif()
include(CheckPIESupported)
check_pie_supported(LANGUAGES C CXX OBJCXX)
if(OSTREVIN_COVERAGE)
  # Each process adds its counts to these files when it ends; scripts/coverage reads them. Several threads count: without
  # atomic counters a lost one passes for a branch that was taken.
  add_compile_options(-fprofile-instr-generate=${CMAKE_BINARY_DIR}/coverage/%2m.profraw -fcoverage-mapping -fprofile-update=atomic)
  add_link_options(-fprofile-instr-generate)
endif()

# A library whose symbols must all be found when it is linked. Not with sanitizers: their functions are in programs only.
set(OSTREVIN_NO_UNDEFINED_SYMBOLS "")
if(NOT APPLE AND NOT OSTREVIN_SANITIZE)
  set(OSTREVIN_NO_UNDEFINED_SYMBOLS -Wl,-z,defs)
endif()
