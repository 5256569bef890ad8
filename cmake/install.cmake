# What `cmake --install` puts where, in three components: the library for programs that run, what
# programs are built with, and the tools for people.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(cmake_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/cmpnt_db)
set(generated_folder ${PROJECT_BINARY_DIR}/install)

# --- the library ---------------------------------------------------------------------------------

install(TARGETS cmpnt_db EXPORT cmpnt_db
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library
    NAMELINK_COMPONENT development)
install(TARGETS cmpnt_db_static EXPORT cmpnt_db
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/include/libcmpnt_db.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/platform/platform.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/cmpnt_db COMPONENT development)

# An installed tree may be moved: each of these files finds the others from where it is itself.
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR} OR IS_ABSOLUTE ${CMAKE_INSTALL_INCLUDEDIR})
    set(CMPNT_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
    set(CMPNT_PC_LIBDIR ${CMAKE_INSTALL_FULL_LIBDIR})
    set(CMPNT_PC_INCLUDEDIR ${CMAKE_INSTALL_FULL_INCLUDEDIR})
else()
    file(RELATIVE_PATH up /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
    string(REGEX REPLACE "/$" "" up ${up})
    set(CMPNT_PC_PREFIX "\${pcfiledir}/${up}")
    set(CMPNT_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
    set(CMPNT_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/libcmpnt_db.pc.in ${generated_folder}/libcmpnt_db.pc @ONLY)
install(FILES ${generated_folder}/libcmpnt_db.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

install(EXPORT cmpnt_db FILE cmpnt_dbTargets.cmake NAMESPACE cmpnt_db::
    DESTINATION ${cmake_package_folder} COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/cmpnt_dbConfig.cmake.in
    ${generated_folder}/cmpnt_dbConfig.cmake INSTALL_DESTINATION ${cmake_package_folder}
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${generated_folder}/cmpnt_dbConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${generated_folder}/cmpnt_dbConfig.cmake ${generated_folder}/cmpnt_dbConfigVersion.cmake
    DESTINATION ${cmake_package_folder} COMPONENT development)

# --- what there is to read -----------------------------------------------------------------------

file(GLOB documents CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.md)
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(FILES ${documents} DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT development FILES_MATCHING PATTERN *.[ch] PATTERN Makefile)

# --- the tools -----------------------------------------------------------------------------------

install(PROGRAMS ${PROJECT_SOURCE_DIR}/tools/package-maker/cmpnt-package
    DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
if(TARGET cmpntctl)
    # It finds the library wherever the tree lies; in Debian's place the loader does.
    if(NOT CMPNT_DEBIAN)
        set_target_properties(cmpntctl PROPERTIES
            INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    endif()
    install(TARGETS cmpntctl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endif()
file(GLOB schemas CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/cmpntctl/schema/*.json)
if(schemas)
    install(FILES ${schemas} DESTINATION ${CMAKE_INSTALL_DATADIR}/cmpnt_db COMPONENT tools)
endif()
if(EXISTS ${PROJECT_SOURCE_DIR}/tools/cmpntctl/completion/cmpntctl.bash)
    install(FILES ${PROJECT_SOURCE_DIR}/tools/cmpntctl/completion/cmpntctl.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME cmpntctl
        COMPONENT tools)
endif()
