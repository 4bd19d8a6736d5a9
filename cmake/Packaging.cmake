# Debian packages made by `cpack -G DEB` from a build: liblumo0 (the shared library) and
# liblumo-dev (headers, CMake package, pkg-config file), one per install component.

# Each package carries its copyright file and a compressed changelog, as Debian expects.
set(lumo_debian_dir ${PROJECT_BINARY_DIR}/debian)
configure_file(${PROJECT_SOURCE_DIR}/cmake/debian/changelog.in ${lumo_debian_dir}/changelog @ONLY)
execute_process(COMMAND gzip -9nf ${lumo_debian_dir}/changelog RESULT_VARIABLE lumo_gzip_rc)
if(lumo_gzip_rc)
    message(FATAL_ERROR "gzip of the Debian changelog failed: ${lumo_gzip_rc}")
endif()
foreach(pair "Runtime;liblumo0" "Devel;liblumo-dev")
    list(GET pair 0 component)
    list(GET pair 1 package)
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/copyright ${lumo_debian_dir}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package} COMPONENT ${component})
endforeach()

set(CPACK_PACKAGE_NAME lumo)
set(CPACK_PACKAGE_VENDOR "The lumo developers")
set(CPACK_PACKAGE_CONTACT "lumo developers <lead@lumo.invalid>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL Runtime Devel)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://lumo.invalid/")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME liblumo0)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
# Depends comes from the libraries the shared object links (dpkg-shlibdeps); the shlibs
# file and the ldconfig trigger let other packages depend on this one in turn.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY "=")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
# The first line is the synopsis; the packager indents the rest.
set(lumo_description "lumo gives C++ applications a managed-language style of programming:
run-time class records and a class registry, exceptions that carry their
source file and line, copy-on-write 8-bit and UTF-16 strings, byte, character
and typed data streams, an XML pull reader and writer over text and over a
document tree, containers, regular expressions, threads with their locks,
conditions and semaphores, and TCP sockets.")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "C++ foundation class library - shared library
${lumo_description}

This package contains the shared library.")

set(CPACK_DEBIAN_DEVEL_PACKAGE_NAME liblumo-dev)
set(CPACK_DEBIAN_DEVEL_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVEL_PACKAGE_DEPENDS
    "liblumo0 (= ${PROJECT_VERSION}), libxerces-c-dev, libicu-dev")
set(CPACK_DEBIAN_DEVEL_DESCRIPTION "C++ foundation class library - development files
${lumo_description}

This package contains the headers, the CMake package and the pkg-config file.")

include(CPack)
