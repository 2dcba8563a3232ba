# cmake -DNM=nm -DOBJCOPY=objcopy -DLIBRARY=... -DMEMBERS=members.txt -DCOPY=scratch-file -P check_used_members.cmake
#
# Fails unless the library has the slots of the host calls that the plugin makes, and neither a slot nor the entry name of
# any other member of the family.
cmake_minimum_required(VERSION 3.25)

set(used_slots
  REALBuildStringWithEncoding REALCreateArray REALGetStringContents REALGetStringContentsLength REALInsertArrayValueString
  REALLoadFrameworkMethod REALLoadObjectMethod REALRegisterModule REALUnlockString)
set(used_members ${used_slots})
list(REMOVE_ITEM used_members REALGetStringContentsLength)

execute_process(COMMAND ${NM} ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "_ZN4host5slots[0-9]+[A-Za-z0-9]+7addressE" slots "${symbols}")
list(TRANSFORM slots REPLACE "_ZN4host5slots[0-9]+([A-Za-z0-9]+)7addressE" "\\1")
list(REMOVE_DUPLICATES slots)
list(SORT slots)
if(NOT slots STREQUAL used_slots)
  message(SEND_ERROR "slots in ${LIBRARY}:\n  ${slots}\nexpected:\n  ${used_slots}")
endif()

# The names of the entries, in what the library loads; debugging information names whatever its sources mention.
execute_process(COMMAND ${OBJCOPY} --strip-debug ${LIBRARY} ${COPY} COMMAND_ERROR_IS_FATAL ANY)
file(STRINGS ${COPY} texts REGEX "^[A-Za-z0-9]+$")
file(STRINGS ${MEMBERS} lines REGEX "^[A-Za-z0-9]+ *\\| [A-Za-z0-9]+ ")
set(used_entries "")
set(unused_entries "")
foreach(line IN LISTS lines)
  string(REGEX MATCH "^([A-Za-z0-9]+) *\\| ([A-Za-z0-9]+) " unused "${line}")
  if(CMAKE_MATCH_1 IN_LIST used_members)
    list(APPEND used_entries ${CMAKE_MATCH_2})
  else()
    list(APPEND unused_entries ${CMAKE_MATCH_2})
  endif()
endforeach()
list(REMOVE_ITEM unused_entries ${used_entries})
list(LENGTH used_entries used_count)
list(LENGTH used_members expected_count)
if(NOT used_count EQUAL expected_count)
  message(SEND_ERROR "${MEMBERS} lacks some of ${used_members}")
endif()
foreach(entry IN LISTS used_entries)
  if(NOT entry IN_LIST texts)
    message(SEND_ERROR "${LIBRARY} lacks the entry name \"${entry}\"")
  endif()
endforeach()
foreach(entry IN LISTS unused_entries)
  if(entry IN_LIST texts)
    message(SEND_ERROR "${LIBRARY} holds the name of an entry that it does not use: \"${entry}\"")
  endif()
endforeach()
list(LENGTH unused_entries count)
message("${LIBRARY}: ${used_count} entries, none of the ${count} others")
