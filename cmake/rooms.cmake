# How every target of the house is compiled, and what a room is.

add_library(tav_flags INTERFACE)
target_compile_options(
  tav_flags
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wshadow
            -Wold-style-cast
            -Wnon-virtual-dtor
            -Woverloaded-virtual
            -Wcast-qual
            $<$<BOOL:${TAV_WERROR}>:-Werror>)
if(WIN32)
  target_compile_options(tav_flags INTERFACE -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
  target_compile_definitions(tav_flags INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601)
endif()
if(TAV_SANITIZE)
  target_compile_options(tav_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                             -fno-omit-frame-pointer)
  # The sanitizer's dlopen looks from its own library, which an executable's RUNPATH does not reach, but RPATH does.
  target_link_options(tav_flags INTERFACE -fsanitize=address,undefined -Wl,--disable-new-dtags)
endif()

# Where programs and libraries find the modules they load: beside them as built, in lib/ as installed.
set(CMAKE_BUILD_RPATH "$ORIGIN;$ORIGIN/../lib")
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/../lib")

# tav_sources(VARIABLE PATTERNS): the sources of these patterns for this platform. One whose name ends in _linux or
# _windows (before _test, if it is a test) belongs to that platform alone, in _x86_windows or _x64_windows to that width of
# it; one that ends in _qt or _x11 to what links Qt, one that ends in _desktop to what shows windows.
function(tav_sources variable patterns)
  file(GLOB sources CONFIGURE_DEPENDS ${patterns})
  list(FILTER sources EXCLUDE REGEX "_(qt|x11|desktop)(_test)?\\.cpp$")
  if(WIN32)
    list(FILTER sources EXCLUDE REGEX "_linux(_test)?\\.cpp$")
    if(CMAKE_SIZEOF_VOID_P EQUAL 8)
      list(FILTER sources EXCLUDE REGEX "_x86_windows\\.cpp$")
    else()
      list(FILTER sources EXCLUDE REGEX "_x64_windows\\.cpp$")
    endif()
  else()
    list(FILTER sources EXCLUDE REGEX "_windows(_test)?\\.cpp$")
  endif()
  set(${variable} ${sources} PARENT_SCOPE)
endfunction()

# tav_room_uses(FOLDER ROOMS...): what the sources in src/FOLDER may include, and do: cmake/check_rooms.cmake compares it
# with them.
function(tav_room_uses folder)
  list(JOIN ARGN "," rooms)
  set_property(GLOBAL APPEND PROPERTY TAV_ROOMS "${folder}:${rooms}")
endfunction()

# tav_room(FOLDER USES...): the static library of the sources in src/FOLDER, tav_FOLDER with "_" for "/". USES are
# rooms made before, by their folders, or libraries.
function(tav_room folder)
  string(REPLACE "/" "_" name tav_${folder})
  tav_sources(sources ${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp)
  if(WIN32 AND folder STREQUAL forms)
    file(GLOB toolkit CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/forms/win32/*.cpp)
    list(APPEND sources ${toolkit})
  endif()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PRIVATE tav_flags)
  # Hosts load the library whole: what waits for people or the disk is small rather than fast.
  if(WIN32 AND folder MATCHES "^(forms|ui|host|settings|reports|load|db|sql|exports|platform|xml|jet/schema|jet/check|jet/create)$")
    target_compile_options(${name} PRIVATE -Os)
  endif()
  # So is what a scan or a look does once, or an act in XML goes through.
  if(WIN32 AND folder STREQUAL convert)
    foreach(source check_xml folder_state folder_glance document_glance load_xml_file act_fields find_text_value)
      set_source_files_properties(${PROJECT_SOURCE_DIR}/src/convert/${source}.cpp PROPERTIES COMPILE_OPTIONS -Os)
    endforeach()
  endif()
  set(rooms "")
  foreach(used ${ARGN})
    string(REPLACE "/" "_" room tav_${used})
    if(TARGET ${room})
      list(APPEND rooms ${used})
      target_link_libraries(${name} PUBLIC ${room})
    else()
      target_link_libraries(${name} PUBLIC ${used})
    endif()
  endforeach()
  tav_room_uses(${folder} ${rooms})
endfunction()

# tav_program_resources(TARGET): what a program of Windows that shows windows has for itself.
function(tav_program_resources target)
  set(folder ${PROJECT_SOURCE_DIR}/src/forms/win32)
  target_sources(${target} PRIVATE ${folder}/common_controls.rc)
  set_source_files_properties(
    ${folder}/common_controls.rc PROPERTIES OBJECT_DEPENDS
                                            "${folder}/common_controls.manifest;${folder}/program.manifest")
endfunction()

# The windows of Linux and its PDFs: a module that a process loads when it shows its first window (forms/forms.h) or
# makes its first PDF (pdf/pdf.h), so that nothing else needs Qt or a screen.
function(tav_forms_module)
  find_package(Qt6 REQUIRED COMPONENTS Widgets)
  find_library(XCB_LIBRARY xcb REQUIRED)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/forms/qt/*.cpp
       ${PROJECT_SOURCE_DIR}/src/pdf/qt/*.cpp)
  foreach(shared form_stretch list_table reader_names)
    list(APPEND sources ${PROJECT_SOURCE_DIR}/src/forms/${shared}.cpp)
  endforeach()
  add_library(tav_forms_qt MODULE ${sources})
  set_target_properties(
    tav_forms_qt
    PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}
               CXX_VISIBILITY_PRESET hidden
               VISIBILITY_INLINES_HIDDEN ON)
  install(TARGETS tav_forms_qt LIBRARY DESTINATION lib)
  target_include_directories(tav_forms_qt PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(tav_forms_qt PRIVATE tav_flags tav_common Qt6::Widgets ${XCB_LIBRARY})
  if(NOT TAV_SANITIZE)
    target_link_options(tav_forms_qt PRIVATE -Wl,--no-undefined)
  endif()
endfunction()
