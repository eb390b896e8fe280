# cmake -DROOMS="ROOM:USED,USED ..." -DSOURCES=FOLDER -P check_rooms.cmake
#
# Fails when a source includes a header of a room that its own does not say it uses, or when a room says that it uses what
# it does not. A room is a folder; one made before another cannot use it, so the arrows have no circle.
#
# Fails, too, when a source has no header of its name, with or without the system it is for (X_linux.cpp, X.h), or when
# two headers have one name: who looks for a thing finds it by the name of its file.

cmake_minimum_required(VERSION 3.25)
string(REPLACE " " ";" ROOMS "${ROOMS}")
set(failures "")

set(names "")
foreach(entry ${ROOMS})
  string(REGEX MATCH "^([^:]*):(.*)$" whole ${entry})
  set(room ${CMAKE_MATCH_1})
  string(REPLACE "," ";" uses_${room} "${CMAKE_MATCH_2}")
  list(APPEND names ${room})
endforeach()

file(GLOB_RECURSE sources RELATIVE ${SOURCES} ${SOURCES}/*.h ${SOURCES}/*.cpp)
foreach(source ${sources})
  get_filename_component(room ${source} DIRECTORY)
  if(NOT room IN_LIST names)
    string(APPEND failures "${source}: its folder is no room\n")
    continue()
  endif()
  file(STRINGS ${SOURCES}/${source} lines REGEX "^#include \"")
  foreach(line ${lines})
    string(REGEX MATCH "\"([^\"]*)/[^/]*\"" whole ${line})
    set(used ${CMAKE_MATCH_1})
    if(used STREQUAL room OR NOT used IN_LIST names)
      continue()
    endif()
    if(NOT used IN_LIST uses_${room})
      string(APPEND failures "${source}: ${room} does not say that it uses ${used}\n")
    endif()
    list(APPEND used_by_${room} ${used})
  endforeach()
endforeach()

foreach(room ${names})
  foreach(used ${uses_${room}})
    if(NOT used IN_LIST used_by_${room})
      string(APPEND failures "${room} says that it uses ${used}, and does not\n")
    endif()
  endforeach()
endforeach()

file(GLOB_RECURSE headers RELATIVE ${SOURCES} ${SOURCES}/*.h)
set(stems "")
foreach(header ${headers})
  get_filename_component(stem ${header} NAME_WE)
  if(stem IN_LIST stems)
    string(APPEND failures "${header}: another header has that name\n")
  endif()
  list(APPEND stems ${stem})
endforeach()

file(GLOB_RECURSE sources RELATIVE ${SOURCES} ${SOURCES}/*.cpp)
foreach(source ${sources})
  get_filename_component(stem ${source} NAME_WE)
  string(REGEX REPLACE "_x(64|86)(_windows)$" "\\2" stem ${stem})
  string(REGEX REPLACE "_(linux|windows)$" "" plain ${stem})
  if(NOT stem IN_LIST stems AND NOT plain IN_LIST stems)
    string(APPEND failures "${source}: no header has its name\n")
  endif()
endforeach()

if(failures)
  message(FATAL_ERROR "${failures}")
endif()
