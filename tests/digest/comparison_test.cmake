# scripts/compare-digests passes equal digests, and names the operation and the build where they differ, when a line is
# missing or too many, and when a program fails or says nothing. The programs here are scripts that print fixed lines.
# cmake -DSOURCE=... -DWORK=... -P comparison_test.cmake
cmake_minimum_required(VERSION 3.25)
find_program(bash bash)
if(NOT bash)
  message("SKIPPED: no bash")
  return()
endif()
file(REMOVE_RECURSE ${WORK})

function(write_program name content)
  file(WRITE ${WORK}/${name} "#!/bin/sh\n${content}\n")
  file(CHMOD ${WORK}/${name} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
endfunction()
set(usual "printf 'merge(list)  11\\nclip  22\\n'")
write_program(usual "${usual}")
write_program(other "printf 'merge(list)  12\\nclip  22\\n'")
write_program(short "echo 'clip  22'")
write_program(long "${usual}; echo 'zoom  33'")
write_program(failing "${usual}; exit 3")
write_program(silent "exit 0")

# expect(PROGRAM STATUS MESSAGE): all builds are the usual one, but clang-O0 is PROGRAM.
function(expect program status message)
  set(arguments clang-O0=${WORK}/${program})
  foreach(build gcc-O3 gcc-O0 clang-O3 sanitizers)
    list(APPEND arguments ${build}=${WORK}/usual)
  endforeach()
  execute_process(COMMAND ${bash} ${SOURCE}/scripts/compare-digests ${arguments} RESULT_VARIABLE code
    OUTPUT_VARIABLE text ERROR_VARIABLE text)
  string(FIND "${text}" "${message}" place)
  if(NOT code EQUAL status OR place EQUAL -1)
    message(SEND_ERROR "With ${program}: status ${code}, not ${status}, or no \"${message}\" in\n${text}")
  endif()
endfunction()
expect(usual 0 "2 operations, the same in")
expect(other 1 "merge(list) is not the same in clang-O0")
expect(short 1 "merge(list) is not the same in clang-O0")
expect(long 1 "zoom is not the same in clang-O0")
expect(failing 1 "the digest of clang-O0 failed")
expect(silent 1 "the digest of clang-O0 printed nothing")

# Without the other three, which are not built either.
execute_process(COMMAND ${bash} ${SOURCE}/scripts/compare-digests --given gcc-O3=${WORK}/usual clang-O0=${WORK}/other
  RESULT_VARIABLE code OUTPUT_VARIABLE text ERROR_VARIABLE text)
if(NOT code EQUAL 1 OR NOT text MATCHES "merge\\(list\\) is not the same in clang-O0")
  message(SEND_ERROR "Of two builds given: status ${code} in\n${text}")
endif()
