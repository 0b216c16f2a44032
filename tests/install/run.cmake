# run(COMMAND...) leaves what it printed in `output`; a command that fails ends the test.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE code OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT code EQUAL 0)
    message(FATAL_ERROR "failed (${code}): ${ARGN}\n${out}${err}")
  endif()
  set(output "${out}" PARENT_SCOPE)
endfunction()

# install_elsewhere(OPTION...) installs what the options of `cmake --install` choose and moves it to ${WORK}/prefix, so
# that nothing can lean on the place where it was first; `installed` lists the files.
macro(install_elsewhere)
  file(REMOVE_RECURSE ${WORK})
  run(${CMAKE_COMMAND} --install ${BUILD} ${ARGN} --prefix ${WORK}/first)
  file(RENAME ${WORK}/first ${WORK}/prefix)
  file(GLOB_RECURSE installed RELATIVE ${WORK}/prefix ${WORK}/prefix/*)
endmacro()
