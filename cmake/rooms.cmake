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
            -Werror)
if(TAV_SANITIZE)
  target_compile_options(tav_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                             -fno-omit-frame-pointer)
  target_link_options(tav_flags INTERFACE -fsanitize=address,undefined)
endif()

# tav_room(NAME USES...): the static library tav_NAME of the sources in src/NAME. A source whose name ends in
# _linux or _windows belongs to that platform alone. USES are other rooms by name, or imported targets.
function(tav_room name)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${name}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "_qt\\.cpp$")
  if(WIN32)
    list(FILTER sources EXCLUDE REGEX "_linux\\.cpp$")
  else()
    list(FILTER sources EXCLUDE REGEX "_windows\\.cpp$")
  endif()
  add_library(tav_${name} STATIC ${sources})
  target_include_directories(tav_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(tav_${name} PRIVATE tav_flags)
  foreach(used ${ARGN})
    if(TARGET tav_${used})
      target_link_libraries(tav_${name} PUBLIC tav_${used})
    else()
      target_link_libraries(tav_${name} PUBLIC ${used})
    endif()
  endforeach()
endfunction()
