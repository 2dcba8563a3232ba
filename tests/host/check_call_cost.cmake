# cmake -DVALGRIND=... -DPROGRAM=call_cost -DDIRECTORY=scratch -P check_call_cost.cmake
#
# Counts the instructions of every series of call_cost.cpp and fails when a host call costs more beyond the bare indirect
# call than the program allows it.
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${DIRECTORY})
file(MAKE_DIRECTORY ${DIRECTORY})
execute_process(
  COMMAND ${VALGRIND} --tool=callgrind --callgrind-out-file=${DIRECTORY}/dump ${PROGRAM}
  OUTPUT_VARIABLE pairs
  ERROR_VARIABLE log
  RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${VALGRIND} failed (${status}):\n${log}")
endif()

# Sets `result` to the instructions of the dump that is named `name`.
function(read_dump name result)
  foreach(file IN LISTS dumps)
    file(READ ${file} text)
    if(text MATCHES "desc: Trigger: Client Request: ${name}\n" AND text MATCHES "\ntotals: ([0-9]+)")
      set(${result} ${CMAKE_MATCH_1} PARENT_SCOPE)
      return()
    endif()
  endforeach()
  message(FATAL_ERROR "no dump is named ${name}:\n${log}")
endfunction()

file(GLOB dumps ${DIRECTORY}/dump.*)
string(REPLACE "\n" ";" pairs "${pairs}")
list(REMOVE_ITEM pairs "")
list(LENGTH pairs count)
if(count EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} measured nothing")
endif()
set(failed FALSE)
foreach(pair IN LISTS pairs)
  string(REPLACE "|" ";" pair "${pair}")
  list(GET pair 0 name)
  list(GET pair 1 calls)
  list(GET pair 2 limit)
  read_dump("member ${name}" member)
  read_dump("bare ${name}" bare)
  # To the nearest instruction; what surrounds a series is a few instructions in all.
  math(EXPR more "(${member} - ${bare} + ${calls} / 2) / ${calls}")
  message("${more} of ${limit} instructions: ${name}")
  if(more GREATER limit)
    set(failed TRUE)
  endif()
endforeach()
if(failed)
  message(FATAL_ERROR "a host call costs more than its limit")
endif()
