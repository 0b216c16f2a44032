# The program in the README is the example that the tests build and run.
# cmake -DSOURCE=... -P readme_test.cmake
cmake_minimum_required(VERSION 3.25)
file(READ ${SOURCE}/README.md readme)
file(READ ${SOURCE}/examples/two_tetrahedra.cpp program)
string(FIND "${readme}" "```cpp\n${program}```" place)
if(place EQUAL -1)
  message(FATAL_ERROR "The program in README.md is not examples/two_tetrahedra.cpp")
endif()
