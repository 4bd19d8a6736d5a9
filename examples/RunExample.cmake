# Runs one example (PROGRAM) and compares its standard output with the file EXPECTED.
# The output is kept in ACTUAL; a difference fails with a unified diff (or, without
# diff, the first line that differs). Standard error is shown but not compared.
cmake_minimum_required(VERSION 3.20)
foreach(var PROGRAM EXPECTED ACTUAL)
    if(NOT DEFINED ${var})
        message(FATAL_ERROR "RunExample.cmake needs -D${var}=...")
    endif()
endforeach()

execute_process(COMMAND ${PROGRAM}
    OUTPUT_VARIABLE actual
    ERROR_VARIABLE errors
    RESULT_VARIABLE status
    TIMEOUT 60)
file(WRITE ${ACTUAL} "${actual}")
if(NOT status STREQUAL "0")
    message(FATAL_ERROR "${PROGRAM} failed (${status}).\nstdout:\n${actual}\nstderr:\n${errors}")
endif()

file(READ ${EXPECTED} expected)
if(actual STREQUAL expected)
    return()
endif()

find_program(DIFF diff)
if(DIFF)
    execute_process(COMMAND ${DIFF} -u ${EXPECTED} ${ACTUAL} OUTPUT_VARIABLE difference)
else()
    # No diff tool: name the first line that differs. Semicolons would split the
    # CMake lists, so they are swapped for a placeholder first.
    string(REPLACE ";" "<semicolon>" expected "${expected}")
    string(REPLACE ";" "<semicolon>" actual "${actual}")
    string(REPLACE "\n" ";" expected_lines "${expected}")
    string(REPLACE "\n" ";" actual_lines "${actual}")
    list(LENGTH expected_lines n_expected)
    list(LENGTH actual_lines n_actual)
    set(difference "line counts: expected ${n_expected}, actual ${n_actual}\n")
    set(i 0)
    while(i LESS n_expected AND i LESS n_actual)
        list(GET expected_lines ${i} e)
        list(GET actual_lines ${i} a)
        if(NOT e STREQUAL a)
            math(EXPR line "${i} + 1")
            string(APPEND difference "line ${line}:\n-${e}\n+${a}\n")
            break()
        endif()
        math(EXPR i "${i} + 1")
    endwhile()
endif()
if(errors)
    string(APPEND difference "stderr:\n${errors}")
endif()
# Printed as it is (FATAL_ERROR would re-indent it), then the failure itself.
message(NOTICE "${difference}")
message(FATAL_ERROR "The output of ${PROGRAM} differs from ${EXPECTED} (differences above).")
