# Installs the built library into a scratch prefix, then configures, builds and runs
# tests/consumer/project against it with nothing but find_package(lumo).
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BINARY_DIR} --prefix ${prefix}
    RESULT_VARIABLE rc)
if(rc)
    message(FATAL_ERROR "install failed: ${rc}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/consumer/project
        -B ${WORK_DIR}/build -G ${GENERATOR} -DCMAKE_PREFIX_PATH=${prefix}
    RESULT_VARIABLE rc)
if(rc)
    message(FATAL_ERROR "configure failed: ${rc}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build RESULT_VARIABLE rc)
if(rc)
    message(FATAL_ERROR "build failed: ${rc}")
endif()
execute_process(COMMAND ${WORK_DIR}/build/consumer RESULT_VARIABLE rc OUTPUT_VARIABLE out)
message(STATUS "${out}")
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "consumer failed: ${rc}")
endif()
