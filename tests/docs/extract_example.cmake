# Writes the files that README shows, in blocks that begin with a comment of their own path, into FOLDER.
cmake_minimum_required(VERSION 3.25)

file(READ ${README} text)
# Lists of CMake are made with these.
string(REPLACE ";" "<semicolon>" text "${text}")
string(REPLACE "[" "<open>" text "${text}")
string(REPLACE "]" "<close>" text "${text}")

function(extract language comment name)
  set(head "```${language}\n${comment} displays/${name}\n")
  string(FIND "${text}" "${head}" begin)
  if(begin EQUAL -1)
    message(FATAL_ERROR "${README} has no block of ${language} that begins with the comment displays/${name}")
  endif()
  string(LENGTH "${head}" length)
  math(EXPR begin "${begin} + ${length}")
  string(SUBSTRING "${text}" ${begin} -1 block)
  string(FIND "${block}" "```" end)
  string(SUBSTRING "${block}" 0 ${end} block)
  string(REPLACE "<semicolon>" ";" block "${block}")
  string(REPLACE "<open>" "[" block "${block}")
  string(REPLACE "<close>" "]" block "${block}")
  file(WRITE ${FOLDER}/${name} "${block}")
endfunction()

extract(cpp "//" main.cpp)
extract(cmake "#" CMakeLists.txt)
