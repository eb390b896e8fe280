# Cross compiling for Windows on Linux: what both widths have in common. CMAKE_SYSTEM_PROCESSOR is the width. The posix
# variant of the compiler has the threads and locks of C++.
set(CMAKE_SYSTEM_NAME Windows)
set(tav_tools ${CMAKE_SYSTEM_PROCESSOR}-w64-mingw32)
set(CMAKE_C_COMPILER ${tav_tools}-gcc-posix)
set(CMAKE_CXX_COMPILER ${tav_tools}-g++-posix)
set(CMAKE_RC_COMPILER ${tav_tools}-windres)

# Only what Windows itself has is imported: the compiler's libraries are linked in.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
set(CMAKE_MODULE_LINKER_FLAGS_INIT -static)

# The same sources make the same bytes, whenever and wherever: no time in the header, no folder of the build in the texts.
# Of what is linked in, only what is used stays.
foreach(language C CXX)
  string(APPEND CMAKE_${language}_FLAGS_INIT " -fstack-protector-strong -ffunction-sections -fdata-sections")
endforeach()
foreach(kind EXE SHARED)
  string(APPEND CMAKE_${kind}_LINKER_FLAGS_INIT " -Wl,--gc-sections,--no-insert-timestamp")
endforeach()

set(CMAKE_FIND_ROOT_PATH /usr/${tav_tools})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
