# Installs the program alone, moves it elsewhere, and runs it with the library that came along.
# cmake -DBUILD=... -DWORK=... -DVERSION=... -P tool_test.cmake
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

install_elsewhere(--component tool)
string(REGEX REPLACE "lib/[^;]*libtessolv" "lib/libtessolv" plain "${installed}")
set(expected bin/tessolv lib/libtessolv.so.3 lib/libtessolv.so.${VERSION} share/bash-completion/completions/tessolv
  share/man/man1/tessolv.1 share/zsh/site-functions/_tessolv)
list(SORT plain)
list(SORT expected)
if(NOT plain STREQUAL expected)
  message(FATAL_ERROR "Installed are ${installed}, not ${expected}")
endif()

unset(ENV{LD_LIBRARY_PATH})
run(${WORK}/prefix/bin/tessolv --version)
if(NOT output STREQUAL "tessolv ${VERSION}\n")
  message(FATAL_ERROR "The installed program says ${output}")
endif()
set(ENV{LD_TRACE_LOADED_OBJECTS} 1)
run(${WORK}/prefix/bin/tessolv)
unset(ENV{LD_TRACE_LOADED_OBJECTS})
if(NOT output MATCHES "libtessolv[^\n]* => ${WORK}/prefix/" OR output MATCHES "${BUILD}/lib")
  message(FATAL_ERROR "The installed program runs with another library:\n${output}")
endif()

file(WRITE ${WORK}/part.mesh "MeshVersionFormatted 2\nDimension 3\nVertices\n4\n0 0 0 1\n1 0 0 1\n0 1 0 1\n0 0 1 1\n"
  "Tetrahedra\n1\n1 2 3 4 1\nEnd\n")
run(${WORK}/prefix/bin/tessolv quality ${WORK}/part.mesh --output ${WORK}/part.vtu)
if(NOT output MATCHES "tetrahedra" OR NOT EXISTS ${WORK}/part.vtu)
  message(FATAL_ERROR "The installed program says ${output}")
endif()
foreach(document IN ITEMS share/man/man1/tessolv.1 share/bash-completion/completions/tessolv
    share/zsh/site-functions/_tessolv)
  file(READ ${WORK}/prefix/${document} text)
  if(NOT text MATCHES "tessolv" OR NOT text MATCHES "weld")
    message(FATAL_ERROR "${document} is\n${text}")
  endif()
endforeach()
