# What `cmake --install` lays out: the library, the public headers, a CMake package, ostrevin-host with its man page and
# completion for shells, the documents and the licences. An installed tree can be moved: programs and libraries find one another
# relative to themselves.
#
# ostrevin_install_common(): what is the same however the binaries were built.
# ostrevin_install_binaries(): the targets of this build.
# ostrevin_package(): packages of what is installed, which `cpack` builds in the build folder: a .tar.gz everywhere, a .deb where
#   Debian's tools are.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(OSTREVIN_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/ostrevin)
set(OSTREVIN_INSTALL_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/ostrevin)
set(OSTREVIN_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/Ostrevin)

# The facade, and the services below it.
set(OSTREVIN_PUBLIC_HEADERS
  base/interface.h
  base/owned_ref.h
  plugin/display.h
  display/device_iterator.h
  display/display_services.h
  display/monitors_set.h
  display/screens.h
  profile/profile_iterator.h
  profile/profile_services.h
  strings/string_services.h
  strings/utils.h)

function(ostrevin_install_common library_name)
  foreach(header IN LISTS OSTREVIN_PUBLIC_HEADERS)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${CMAKE_SOURCE_DIR}/${header} DESTINATION ${OSTREVIN_INSTALL_INCLUDEDIR}/${folder})
  endforeach()
  foreach(document IN ITEMS README.md SECURITY.md CHANGELOG.md THIRD-PARTY.md LICENSE)
    install(FILES ${CMAKE_SOURCE_DIR}/${document} DESTINATION ${OSTREVIN_INSTALL_DOCDIR})
  endforeach()
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs DESTINATION ${OSTREVIN_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.md" PATTERN "*.svg")

  set(OSTREVIN_LIBRARY_FILE ${CMAKE_INSTALL_LIBDIR}/${library_name})
  set(OSTREVIN_PLATFORM_FILE ${CMAKE_INSTALL_LIBDIR}/libOstrevinPlatform.so)
  configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/OstrevinConfig.cmake.in
    ${CMAKE_BINARY_DIR}/package/OstrevinConfig.cmake
    INSTALL_DESTINATION ${OSTREVIN_INSTALL_CMAKEDIR}
    PATH_VARS OSTREVIN_INSTALL_INCLUDEDIR OSTREVIN_LIBRARY_FILE OSTREVIN_PLATFORM_FILE)
  write_basic_package_version_file(${CMAKE_BINARY_DIR}/package/OstrevinConfigVersion.cmake
    VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
  install(FILES
    ${CMAKE_BINARY_DIR}/package/OstrevinConfig.cmake ${CMAKE_BINARY_DIR}/package/OstrevinConfigVersion.cmake
    DESTINATION ${OSTREVIN_INSTALL_CMAKEDIR})
endfunction()

function(ostrevin_install_binaries)
  if(APPLE)
    ostrevin_install_common(Ostrevin.dylib)
  else()
    ostrevin_install_common(libOstrevin.so)
  endif()
  install(TARGETS Ostrevin LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(TARGETS ostrevin-host RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES ${CMAKE_SOURCE_DIR}/docs/ostrevin-host.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${CMAKE_SOURCE_DIR}/devhost/completion/ostrevin-host.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ostrevin-host)
  install(FILES ${CMAKE_SOURCE_DIR}/devhost/completion/_ostrevin-host DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
  if(APPLE)
    return()
  endif()
  # Where Debian looks for the licences of a package and of what it contains.
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS LICENSE THIRD-PARTY.md)
  file(READ ${CMAKE_SOURCE_DIR}/LICENSE licence)
  file(READ ${CMAKE_SOURCE_DIR}/THIRD-PARTY.md third_parties)
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/package/copyright CONTENT "${licence}\n${third_parties}" @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/package/copyright DESTINATION ${OSTREVIN_INSTALL_DOCDIR})
  install(TARGETS OstrevinPlatform ${OSTREVIN_PLATFORM_PARTS} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/platform/include/ DESTINATION ${OSTREVIN_INSTALL_INCLUDEDIR}/platform)
  install(FILES ${CMAKE_SOURCE_DIR}/devhost/example-desktop.json ${CMAKE_SOURCE_DIR}/devhost/example-profile.icc
    DESTINATION ${CMAKE_INSTALL_DATADIR}/ostrevin)
  # The same in the build tree, where libraries are in lib: what is linked there is not touched when it is installed, and
  # has none of the empty entries, the current directory, by which CMake would keep room for another path.
  file(RELATIVE_PATH from_programs_to_libraries /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set(library_folders "$ORIGIN/${from_programs_to_libraries}" "$ORIGIN/../lib")
  list(REMOVE_DUPLICATES library_folders)
  set_target_properties(ostrevin-host PROPERTIES INSTALL_RPATH "${library_folders}" BUILD_WITH_INSTALL_RPATH ON)
  set_target_properties(Ostrevin OstrevinPlatform ${OSTREVIN_PLATFORM_PARTS} PROPERTIES INSTALL_RPATH "$ORIGIN" BUILD_WITH_INSTALL_RPATH ON)
endfunction()

macro(ostrevin_package)
  set(CPACK_PACKAGE_NAME ostrevin)
  set(CPACK_PACKAGE_VENDOR "The Ostrevin authors")
  set(CPACK_PACKAGE_CONTACT "The Ostrevin authors <authors@ostrevin.invalid>")
  set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
  set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
  set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_SOURCE_DIR}/LICENSE)
  set(CPACK_VERBATIM_VARIABLES ON)
  set(CPACK_GENERATOR TGZ)

  if(APPLE OR OSTREVIN_MACOS_CROSS)
    set(CPACK_SYSTEM_NAME macos-universal)
  else()
    # Linked against libraries of this system's versions, hence named after it: debian-12-x86_64.
    cmake_host_system_information(RESULT system QUERY DISTRIB_INFO)
    set(CPACK_SYSTEM_NAME ${system_ID}-${system_VERSION_ID}-${CMAKE_SYSTEM_PROCESSOR})
    set(CPACK_STRIP_FILES ON)
    find_program(OSTREVIN_DPKG_SHLIBDEPS dpkg-shlibdeps)
    if(OSTREVIN_DPKG_SHLIBDEPS)
      list(APPEND CPACK_GENERATOR DEB)
    endif()
  endif()

  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_VERSION ${PROJECT_VERSION})
  set(CPACK_DEBIAN_PACKAGE_RELEASE 1${system_ID}${system_VERSION_ID})
  set(CPACK_DEBIAN_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Gives a host's programs the displays and their ICC colour profiles.
The package has the library, its C++ headers and CMake package, and
the tool ostrevin-host.")
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/package/triggers CONTENT "activate-noawait ldconfig\n")
  set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_BINARY_DIR}/package/triggers)
  set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/cmake/DebianFiles.cmake)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
  include(CPack)
endmacro()
