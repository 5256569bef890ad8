# Manual pages, docs/man/NAME.SECTION.scd, where scdoc is there to make them.
find_program(CMPNT_SCDOC scdoc)
file(GLOB manual_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/man/*.scd)
if(NOT CMPNT_SCDOC OR NOT manual_sources)
    return()
endif()

include(GNUInstallDirs)
set(pages)
foreach(source IN LISTS manual_sources)
    get_filename_component(name ${source} NAME_WLE)
    string(REGEX REPLACE ".*\\." "" section ${name})
    set(page ${PROJECT_BINARY_DIR}/man/${name})
    add_custom_command(OUTPUT ${page}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/man
        COMMAND sh -c "\"$0\" <\"$1\" >\"$2\"" ${CMPNT_SCDOC} ${source} ${page}
        DEPENDS ${source} VERBATIM)
    install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT tools)
    list(APPEND pages ${page})
endforeach()
add_custom_target(cmpnt_manual ALL DEPENDS ${pages})
