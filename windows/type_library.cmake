# tav_type_library(NAME): NAME.tlb, made of NAME.idl.in by widl and patch_type_library, a program of this machine.
find_program(TAV_WIDL ${tav_tools}-widl REQUIRED)
find_program(TAV_ICONV iconv REQUIRED)
find_program(TAV_BUILD_CXX NAMES c++ g++ clang++ REQUIRED)
# Wine's own library of the standard types of Automation.
file(GLOB folders /usr/lib/*/wine/x86_64-windows /usr/lib*/wine/x86_64-windows)
find_path(TAV_STDOLE stdole2.tlb PATHS ${folders} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)

function(tav_type_library name)
  set(made ${CMAKE_CURRENT_BINARY_DIR}/${name})
  set(patch ${CMAKE_CURRENT_BINARY_DIR}/patch_type_library)
  set(source ${CMAKE_CURRENT_SOURCE_DIR}/patch_type_library.cpp)
  add_custom_command(
    OUTPUT ${patch}
    COMMAND ${TAV_BUILD_CXX} -std=c++20 -O1 -Wall -Wextra -Wpedantic -Wshadow -Wold-style-cast -Werror ${source} -o ${patch}
    DEPENDS ${source}
    COMMENT "Building patch_type_library for this machine")
  configure_file(${name}.idl.in ${made}.utf8.idl @ONLY)
  math(EXPR bits "8 * ${CMAKE_SIZEOF_VOID_P}")
  add_custom_command(
    OUTPUT ${made}.tlb
    COMMAND ${TAV_ICONV} -f UTF-8 -t CP1251 ${made}.utf8.idl > ${made}.idl
    COMMAND ${TAV_WIDL} -m${bits} -t -L ${TAV_STDOLE} -o ${made}.raw.tlb ${made}.idl
    COMMAND ${patch} ${made}.raw.tlb ${made}.tlb
    DEPENDS ${made}.utf8.idl ${patch}
    COMMENT "Making ${name}.tlb")
endfunction()
