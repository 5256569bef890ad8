# Debian packages, one for each component, by cpack; scripts/package calls it.
option(CMPNT_DEBIAN "Install what Debian's policy wants in a package, too" OFF)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME cmpnt-db)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "libcmpnt_db maintainers <maintainers@example.org>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library development tools)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/compress_manual.cmake)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The library that the tools need is in no package yet that could be asked for its dependency.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})

# Lines of up to 80 characters, as they are shown.
set(about "libcmpnt_db keeps in SQLite which packages of a network device are
installed and in which state, chooses the package file that a rollback goes
back to, and verifies that packages are the ones that the vendor signed.")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libcmpnt-db${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/debian/shlibs
    ${PROJECT_BINARY_DIR}/debian/triggers)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "component database of a network device - library\n${about}")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libcmpnt-db-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${PROJECT_VERSION}), libprotobuf-c-dev, libsqlite3-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "component database of a network device - development
${about}\n\nThis package has what programs are built with: headers, the archive, the files
of pkg-config and CMake, and a small host to copy.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME cmpnt-db-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS
    "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (>= ${PROJECT_VERSION}), openssl")
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS bubblewrap)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "component database of a network device - tools
${about}\n\nThis package has cmpntctl, the operator's tool, and cmpnt-package, which makes
signed packages.")

file(WRITE ${PROJECT_BINARY_DIR}/debian/shlibs "libcmpnt_db ${PROJECT_VERSION_MAJOR} \
${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (>= ${PROJECT_VERSION})\n")
file(WRITE ${PROJECT_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")

if(CMPNT_DEBIAN)
    set(changelog ${PROJECT_BINARY_DIR}/debian/changelog)
    configure_file(packaging/debian/changelog ${changelog} COPYONLY)
    execute_process(COMMAND gzip -9nkf ${changelog} COMMAND_ERROR_IS_FATAL ANY)
    foreach(component IN LISTS CPACK_COMPONENTS_ALL)
        string(TOUPPER ${component} name)
        install(FILES packaging/debian/copyright ${changelog}.gz COMPONENT ${component}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${name}_PACKAGE_NAME})
    endforeach()
endif()
include(CPack)
