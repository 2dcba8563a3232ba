# Makes the packages in FOLDER, unpacks each and runs ostrevin-host from it.
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${FOLDER})
execute_process(COMMAND ${CPACK} --config ${CONFIG} -B ${FOLDER} COMMAND_ERROR_IS_FATAL ANY)

function(expect_it_runs program)
  execute_process(COMMAND ${program} methods OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  if(NOT output MATCHES "QV02Read\\(path As String, byref xmlString As String\\) As Integer")
    message(FATAL_ERROR "${program} does not list the methods:\n${output}")
  endif()
endfunction()

function(expect_one_package variable pattern)
  file(GLOB packages ${FOLDER}/${pattern})
  list(LENGTH packages count)
  if(NOT count EQUAL 1)
    message(FATAL_ERROR "${count} packages ${pattern} in ${FOLDER}")
  endif()
  set(${variable} ${packages} PARENT_SCOPE)
endfunction()

expect_one_package(tarball *.tar.gz)
file(ARCHIVE_EXTRACT INPUT ${tarball} DESTINATION ${FOLDER}/tarball)
file(GLOB program ${FOLDER}/tarball/*/bin/ostrevin-host)
expect_it_runs(${program})

find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
if(DPKG_SHLIBDEPS)
  expect_one_package(package *.deb)
  execute_process(COMMAND dpkg-deb -x ${package} ${FOLDER}/deb COMMAND_ERROR_IS_FATAL ANY)
  expect_it_runs(${FOLDER}/deb/usr/bin/ostrevin-host)
endif()
