#The parts in the repository are what their script makes : cmake - DPARTS = folder - DWORK = \
                                                                                folder - P make_parts_test.cmake
find_program(python NAMES python3) if (NOT python)
    message("SKIPPED: there is no python3 to make the parts with") return () endif() file(REMOVE_RECURSE ${WORK})
        file(MAKE_DIRECTORY ${WORK})
            execute_process(COMMAND ${python} ${PARTS} / make_parts.py ${WORK} COMMAND_ERROR_IS_FATAL ANY)
                foreach (part flange.stl flange - faulty.stl)
                    execute_process(COMMAND ${CMAKE_COMMAND} - E compare_files ${PARTS} / ${part} ${WORK} /
                                                                   ${part} RESULT_VARIABLE differs) if (differs)
                        message(FATAL_ERROR "${part} is not what make_parts.py makes") endif() endforeach()
