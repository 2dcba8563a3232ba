# On a Mac: each architecture's oldest system, and the targets that check, sign and notarise what was built.

get_directory_property(ostrevin_compile_options COMPILE_OPTIONS)
get_directory_property(ostrevin_link_options LINK_OPTIONS)

# CMake has one oldest system for all architectures; the compiler takes one for each.
if(OSTREVIN_OWN_DEPLOYMENT_TARGETS)
  set(CMAKE_OSX_DEPLOYMENT_TARGET "")
  set(oldest_arm64 11.0)
  set(oldest_x86_64 10.13)
  foreach(architecture IN LISTS CMAKE_OSX_ARCHITECTURES)
    if(DEFINED oldest_${architecture})
      set(option "SHELL:-Xarch_${architecture} -mmacosx-version-min=${oldest_${architecture}}")
      add_compile_options("${option}")
      add_link_options("${option}")
    endif()
  endforeach()
endif()

# ostrevin_build_for_this_mac_only(): what is added from here on is for this computer's processor and system.
macro(ostrevin_build_for_this_mac_only)
  set(CMAKE_OSX_ARCHITECTURES ${CMAKE_HOST_SYSTEM_PROCESSOR})
  set_directory_properties(PROPERTIES
    COMPILE_OPTIONS "${ostrevin_compile_options}"
    LINK_OPTIONS "${ostrevin_link_options}")
endmacro()

# ostrevin_add_macos_targets(): check-macho, sign, notarize. See docs/macos.md.
function(ostrevin_add_macos_targets)
  ostrevin_add_macho_check($<TARGET_FILE:Ostrevin> $<TARGET_FILE:ostrevin-host> Ostrevin ostrevin-host)

  set(OSTREVIN_SIGN_IDENTITY "-" CACHE STRING "Identity to sign with; - signs for this computer only")
  set(options --options runtime --timestamp)
  if(OSTREVIN_SIGN_IDENTITY STREQUAL "-")
    set(options --timestamp=none)  # the hardened runtime would refuse a library that belongs to no team
  endif()
  add_custom_target(sign
    COMMAND codesign --force ${options} --sign ${OSTREVIN_SIGN_IDENTITY}
      $<TARGET_FILE:Ostrevin> $<TARGET_FILE:ostrevin-host>
    COMMAND codesign --verify --strict --verbose=2 $<TARGET_FILE:Ostrevin> $<TARGET_FILE:ostrevin-host>
    DEPENDS Ostrevin ostrevin-host
    VERBATIM)

  set(OSTREVIN_NOTARY_PROFILE "" CACHE STRING "Keychain profile that notarytool stored the credentials in")
  set(archive ${CMAKE_BINARY_DIR}/Ostrevin.zip)
  add_custom_target(notarize
    COMMAND ditto -c -k --keepParent $<TARGET_FILE:Ostrevin> ${archive}
    COMMAND xcrun notarytool submit ${archive} --keychain-profile ${OSTREVIN_NOTARY_PROFILE} --wait
    DEPENDS sign
    VERBATIM)
endfunction()
