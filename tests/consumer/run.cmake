# Puts the built library into a scratch root, then configures, builds and runs
# tests/consumer/project against it with nothing but find_package(lumo), and builds the
# same program again with nothing but pkg-config. FROM=install uses `cmake --install`;
# FROM=deb makes the Debian packages with cpack and unpacks both with dpkg-deb.
file(REMOVE_RECURSE ${WORK_DIR})

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
    if(rc)
        message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}")
    endif()
    set(out "${out}" PARENT_SCOPE)
endfunction()

if(FROM STREQUAL "deb")
    set(prefix ${WORK_DIR}/root/usr)
    run(${CMAKE_CPACK_COMMAND} -G DEB --config ${BINARY_DIR}/CPackConfig.cmake
        -B ${WORK_DIR}/packages)
    file(GLOB debs ${WORK_DIR}/packages/*.deb)
    list(LENGTH debs count)
    if(NOT count EQUAL 2)
        message(FATAL_ERROR "expected two packages, got: ${debs}")
    endif()
    foreach(deb IN LISTS debs)
        run(dpkg-deb -x ${deb} ${WORK_DIR}/root)
    endforeach()
else()
    set(prefix ${WORK_DIR}/prefix)
    run(${CMAKE_COMMAND} --install ${BINARY_DIR} --prefix ${prefix})
endif()

run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/consumer/project -B ${WORK_DIR}/build
    -G ${GENERATOR} -DCMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(${WORK_DIR}/build/consumer)
message(STATUS "find_package: ${out}")

file(GLOB_RECURSE pc_files ${prefix}/lumo.pc)
get_filename_component(pc_dir "${pc_files}" DIRECTORY)
set(ENV{PKG_CONFIG_PATH} ${pc_dir})
run(pkg-config --cflags --libs lumo)
separate_arguments(flags UNIX_COMMAND "${out}")
string(REGEX MATCH "-L[^ ]+" libdir_flag "${out}")
string(SUBSTRING "${libdir_flag}" 2 -1 libdir)
run(c++ -std=c++17 ${SOURCE_DIR}/tests/consumer/project/main.cpp ${flags}
    -Wl,-rpath,${libdir} -o ${WORK_DIR}/consumer-pc)
run(${WORK_DIR}/consumer-pc)
message(STATUS "pkg-config: ${out}")
