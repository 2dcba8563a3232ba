# The folder of an SDK for a macOS build without one. The frameworks' headers are those of platform/include, with the few of
# cmake/macos/include that platform/ takes from the system; libraries are import lists (.tbd) of what these headers declare and
# nothing else, so that a call to anything else does not link.
#
#   ostrevin_make_sdk(FOLDER)
#   ostrevin_ffi_import_list(FILE)
#
# Install names and versions are those of macOS 12, whose SDK the declarations agree with.

set(OSTREVIN_PLATFORM_HEADERS ${CMAKE_SOURCE_DIR}/platform/include)
set(OSTREVIN_MACOS_HEADERS ${CMAKE_CURRENT_LIST_DIR}/include)

# ostrevin_import_list(FILE INSTALL_NAME VERSION COMPATIBILITY [SYMBOLS names...] [X86_64_SYMBOLS names...] [CLASSES names...]):
# names as in C.
function(ostrevin_import_list file install_name version compatibility)
  cmake_parse_arguments(arg "" "" "SYMBOLS;X86_64_SYMBOLS;CLASSES" ${ARGN})
  list(TRANSFORM arg_SYMBOLS PREPEND _)
  list(TRANSFORM arg_X86_64_SYMBOLS PREPEND _)
  foreach(names IN ITEMS SYMBOLS X86_64_SYMBOLS CLASSES)
    list(JOIN arg_${names} ", " ${names})
  endforeach()
  file(CONFIGURE OUTPUT ${file} @ONLY CONTENT "--- !tapi-tbd
tbd-version: 4
targets: [ x86_64-macos, arm64-macos ]
install-name: '@install_name@'
current-version: @version@
compatibility-version: @compatibility@
exports:
  - targets: [ x86_64-macos, arm64-macos ]
    symbols: [ @SYMBOLS@ ]
    objc-classes: [ @CLASSES@ ]
  - targets: [ x86_64-macos ]
    symbols: [ @X86_64_SYMBOLS@ ]
...
")
endfunction()

# ostrevin_declared_names(FOLDER PATTERN VARIABLE): what the headers in FOLDER declare in the form of PATTERN, whose first
# group is a name. Commas stand for the semicolons of the source.
function(ostrevin_declared_names folder pattern variable)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${folder}/*.h)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${headers})
  set(names "")
  foreach(header IN LISTS headers)
    file(READ ${header} text)
    string(REPLACE ";" "," text "${text}")
    string(REGEX REPLACE "(//|#)[^\n]*" "" text "${text}")
    string(REGEX MATCHALL "${pattern}" matches "${text}")
    list(TRANSFORM matches REPLACE "${pattern}" "\\1")
    list(APPEND names ${matches})
  endforeach()
  set(${variable} ${names} PARENT_SCOPE)
endfunction()

function(ostrevin_declared_symbols folder variable)
  ostrevin_declared_names(${folder} "CF_EXPORT [^,(]*[ *]([A-Za-z0-9_]+)[,(]" names)
  set(${variable} ${names} PARENT_SCOPE)
endfunction()

function(ostrevin_declared_classes folder variable)
  ostrevin_declared_names(${folder} "@interface ([A-Za-z]+)[^ ]* :" names)
  set(${variable} ${names} PARENT_SCOPE)
endfunction()

function(ostrevin_ffi_import_list file)
  set(types void pointer float double uint8 uint16 uint32 uint64 sint8 sint16 sint32 sint64)
  list(TRANSFORM types PREPEND ffi_type_)
  ostrevin_import_list(${file} /usr/lib/libffi.dylib 1 1
    SYMBOLS ${types} ffi_prep_cif ffi_call ffi_closure_alloc ffi_closure_free ffi_prep_closure_loc)
endfunction()

# ostrevin_own_framework(SDK NAME VERSION_LETTER VERSION COMPATIBILITY HEADERS names...): the rest is for ostrevin_import_list.
function(ostrevin_own_framework sdk name letter version compatibility headers)
  set(folder ${sdk}/System/Library/Frameworks/${name}.framework)
  file(MAKE_DIRECTORY ${folder})
  file(CREATE_LINK ${headers} ${folder}/Headers SYMBOLIC)
  ostrevin_import_list(${folder}/${name}.tbd /System/Library/Frameworks/${name}.framework/Versions/${letter}/${name}
    ${version} ${compatibility} ${ARGN})
endfunction()

function(ostrevin_make_sdk sdk)
  foreach(name IN ITEMS CoreFoundation CoreGraphics ColorSync IOKit)
    ostrevin_declared_symbols(${OSTREVIN_PLATFORM_HEADERS}/${name} ${name})
  endforeach()
  ostrevin_declared_classes(${OSTREVIN_PLATFORM_HEADERS}/AppKit AppKit)
  ostrevin_declared_classes(${OSTREVIN_MACOS_HEADERS}/Foundation Foundation)
  # Classes of Foundation that are part of the library CoreFoundation.
  set(shared_classes NSArray NSData NSLocale NSURL)
  list(REMOVE_ITEM Foundation ${shared_classes})

  ostrevin_own_framework(${sdk} CoreFoundation A 1853 150 ${OSTREVIN_PLATFORM_HEADERS}/CoreFoundation
    SYMBOLS ${CoreFoundation} __CFConstantStringClassReference CLASSES ${shared_classes})
  ostrevin_own_framework(${sdk} CoreGraphics A 1557.1.1 64 ${OSTREVIN_PLATFORM_HEADERS}/CoreGraphics SYMBOLS ${CoreGraphics})
  ostrevin_own_framework(${sdk} ColorSync A 4.7 1 ${OSTREVIN_PLATFORM_HEADERS}/ColorSync SYMBOLS ${ColorSync})
  ostrevin_own_framework(${sdk} IOKit A 275 1 ${OSTREVIN_PLATFORM_HEADERS}/IOKit SYMBOLS ${IOKit})
  ostrevin_own_framework(${sdk} AppKit C 2103.13.10 45 ${OSTREVIN_PLATFORM_HEADERS}/AppKit CLASSES ${AppKit})
  ostrevin_own_framework(${sdk} Foundation C 1853 300 ${OSTREVIN_MACOS_HEADERS}/Foundation CLASSES ${Foundation})

  file(MAKE_DIRECTORY ${sdk}/usr/include)
  file(CREATE_LINK ${OSTREVIN_MACOS_HEADERS}/ffi ${sdk}/usr/include/ffi SYMBOLIC)
  # What the compiler makes of messages and of loops over a collection; Zig has the headers.
  ostrevin_import_list(${sdk}/usr/lib/libobjc.tbd /usr/lib/libobjc.A.dylib 228 1
    SYMBOLS objc_msgSend objc_enumerationMutation X86_64_SYMBOLS objc_msgSend_stret CLASSES NSObject)
  ostrevin_ffi_import_list(${sdk}/usr/lib/libffi.tbd)
  file(WRITE ${sdk}/SDKSettings.json [[{"Version": "12.0", "MaximumDeploymentTarget": "12.0.99"}]])
endfunction()
