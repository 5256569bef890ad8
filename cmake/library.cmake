# The shared library and the static archive that the tests link, from the same objects.
include(GNUInstallDirs)
find_library(CMPNT_SQLITE sqlite3 REQUIRED)
find_library(CMPNT_PROTOBUF_C protobuf-c REQUIRED)

set_target_properties(cmpnt_objects PROPERTIES POSITION_INDEPENDENT_CODE ON)
target_compile_options(cmpnt_objects PRIVATE ${CMPNT_LIBRARY_OPTIONS})
target_include_directories(cmpnt_objects PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(cmpnt_objects PRIVATE cmpnt_proto_headers)

set(CMPNT_VERSION_SCRIPT ${PROJECT_SOURCE_DIR}/cmake/libcmpnt_db.map)
add_library(cmpnt_db SHARED $<TARGET_OBJECTS:cmpnt_objects> $<TARGET_OBJECTS:cmpnt_proto>)
add_library(cmpnt_db::cmpnt_db ALIAS cmpnt_db)
target_include_directories(cmpnt_db INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(cmpnt_db PRIVATE ${CMPNT_SQLITE} ${CMPNT_PROTOBUF_C})
# -Bsymbolic-functions and not -Bsymbolic: a host that takes the address of an exported list head or
# of g_dev_info has them copied into itself, and must see the same object as the library.
target_link_options(cmpnt_db PRIVATE -Wl,-Bsymbolic-functions -Wl,--as-needed -Wl,-z,relro
    -Wl,-z,now -Wl,--version-script=${CMPNT_VERSION_SCRIPT})
set_target_properties(cmpnt_db PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
    LINKER_LANGUAGE C # the C++ runtime stays out
    LINK_DEPENDS ${CMPNT_VERSION_SCRIPT})

add_library(cmpnt_db_static STATIC $<TARGET_OBJECTS:cmpnt_objects> $<TARGET_OBJECTS:cmpnt_proto>)
add_library(cmpnt_db::cmpnt_db_static ALIAS cmpnt_db_static)
target_include_directories(cmpnt_db_static PUBLIC
    "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR};${PROJECT_SOURCE_DIR}/include>"
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
# Once installed, the archive says which libraries it needs, and not where they were here.
target_link_libraries(cmpnt_db_static PUBLIC
    "$<BUILD_INTERFACE:cmpnt_proto_headers;${CMPNT_SQLITE};${CMPNT_PROTOBUF_C}>"
    "$<INSTALL_INTERFACE:sqlite3;protobuf-c>")
set_target_properties(cmpnt_db_static PROPERTIES OUTPUT_NAME cmpnt_db)
