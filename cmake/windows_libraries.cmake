# The libraries by the names they have on Linux: SQLite and libxml2 as scripts/fetch_windows_sources has built them,
# header-only ones from the headers of this machine, GoogleTest from its sources.

set(deps ${PROJECT_SOURCE_DIR}/build/windows-deps/x64)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(deps ${PROJECT_SOURCE_DIR}/build/windows-deps/x86)
endif()
if(NOT EXISTS ${deps}/lib/libxml2.a)
  message(FATAL_ERROR "scripts/fetch_windows_sources has not been run")
endif()

add_library(SQLite::SQLite3 STATIC IMPORTED GLOBAL)
set_target_properties(SQLite::SQLite3 PROPERTIES IMPORTED_LOCATION ${deps}/lib/libsqlite3.a
                                                 INTERFACE_INCLUDE_DIRECTORIES ${deps}/include)

add_library(LibXml2::LibXml2 STATIC IMPORTED GLOBAL)
set_target_properties(
  LibXml2::LibXml2
  PROPERTIES IMPORTED_LOCATION ${deps}/lib/libxml2.a
             INTERFACE_INCLUDE_DIRECTORIES ${deps}/include/libxml2
             INTERFACE_COMPILE_DEFINITIONS LIBXML_STATIC
             INTERFACE_LINK_LIBRARIES ws2_32)

# tav_headers(TARGET FOLDER): a library that is the folder of that name among this machine's headers, without the
# headers beside it.
function(tav_headers target folder)
  find_path(TAV_${folder}_PARENT ${folder} PATHS /usr/include /usr/local/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH
                                                 REQUIRED)
  set(alone ${CMAKE_BINARY_DIR}/headers/${folder})
  file(MAKE_DIRECTORY ${alone})
  file(CREATE_LINK ${TAV_${folder}_PARENT}/${folder} ${alone}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES ${alone})
endfunction()
tav_headers(CLI11::CLI11 CLI)
tav_headers(nlohmann_json::nlohmann_json nlohmann)

if(TAV_TESTS)
  find_path(TAV_GOOGLETEST googlemock/CMakeLists.txt PATHS /usr/src/googletest NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH
                                                           REQUIRED)
  set(INSTALL_GTEST OFF)
  add_subdirectory(${TAV_GOOGLETEST} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  foreach(library gtest gtest_main gmock gmock_main)
    if(NOT TARGET GTest::${library})
      add_library(GTest::${library} ALIAS ${library})
    endif()
  endforeach()
endif()
