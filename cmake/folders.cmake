# One file, one idea, and its test beside it under the same name: FILE.cc is part of the library,
# FILE_test.cc is a test program.
function(cmpnt_folder)
    file(GLOB files CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cc)
    foreach(file IN LISTS files)
        if(file MATCHES "_test\\.cc$")
            cmpnt_test(${file})
        else()
            target_sources(cmpnt_objects PRIVATE ${file})
        endif()
    endforeach()
endfunction()

# Each test runs in a sandbox of its own, and so starts from empty directories.
function(cmpnt_test file)
    if(NOT CMPNT_TESTS)
        return()
    endif()
    get_filename_component(program ${file} NAME_WE)
    get_filename_component(folder ${CMAKE_CURRENT_SOURCE_DIR} NAME)
    add_executable(${program} ${file})
    target_link_libraries(${program} PRIVATE cmpnt_test_support)
    target_precompile_headers(${program} REUSE_FROM cmpnt_test_support)
    if(CMPNT_TEST_LAUNCHER)
        set_target_properties(${program} PROPERTIES
            CROSSCOMPILING_EMULATOR "${CMPNT_TEST_LAUNCHER}")
    endif()
    include(GoogleTest)
    gtest_discover_tests(${program} DISCOVERY_MODE PRE_TEST TEST_PREFIX "${folder}/"
        DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
endfunction()

# cmpnt_fast_sources(FILE...): work of this folder that is done for every line, row or version.
function(cmpnt_fast_sources)
    set_source_files_properties(${ARGN} TARGET_DIRECTORY cmpnt_objects
        PROPERTIES COMPILE_OPTIONS $<$<NOT:$<CONFIG:Debug>>:-O2>)
endfunction()
