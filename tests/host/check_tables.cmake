# cmake -DHEADERS=host-folder -DMEMBERS=members.txt -P check_tables.cmake
#
# Fails unless members.txt has every member that the tables have; the build fails unless the tables have every member that
# members.txt has.
cmake_minimum_required(VERSION 3.25)

file(GLOB headers ${HEADERS}/*.h)
list(REMOVE_ITEM headers ${HEADERS}/table.h)
set(slots "")
foreach(header IN LISTS headers)
  file(STRINGS ${header} lines REGEX "^HOST_")
  foreach(line IN LISTS lines)
    if(NOT line MATCHES "^HOST_[A-Z_]+ *\\(([A-Za-z0-9]+),")
      message(FATAL_ERROR "${header}: not a line of a table: ${line}")
    endif()
    list(APPEND slots ${CMAKE_MATCH_1})
  endforeach()
endforeach()
list(REMOVE_ITEM slots REALGetStringContentsLength)  # the second slot of a member

file(STRINGS ${MEMBERS} lines REGEX "^[A-Za-z0-9]+ *\\|")
list(TRANSFORM lines REPLACE " *\\|.*" "")
list(REMOVE_ITEM lines REALLoadGlobalMethod)  # goes through another member
foreach(slot IN LISTS slots)
  if(NOT slot IN_LIST lines)
    message(SEND_ERROR "${MEMBERS} lacks ${slot}")
  endif()
endforeach()
list(SORT slots)
list(SORT lines)
if(NOT slots STREQUAL lines)
  message(SEND_ERROR "the tables and ${MEMBERS} list different members")
endif()
list(LENGTH slots count)
message("${count} members with a slot of their own")
