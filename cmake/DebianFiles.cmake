# Run by cpack before it makes a .deb of CPACK_TEMPORARY_DIRECTORY: what Debian's policy asks of a package beside what is
# installed, a compressed manual page and a changelog.
if(NOT CPACK_GENERATOR STREQUAL DEB)
  return()
endif()
set(share ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${share}/doc/ostrevin/changelog.Debian
  "ostrevin (${CPACK_DEBIAN_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) stable; urgency=medium

  * The changes are in CHANGELOG.md, beside this file.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
execute_process(COMMAND gzip -9n ${share}/doc/ostrevin/changelog.Debian ${share}/man/man1/ostrevin-host.1
  COMMAND_ERROR_IS_FATAL ANY)
