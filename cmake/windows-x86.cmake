set(CMAKE_SYSTEM_PROCESSOR i686)

# Amounts are rounded as in 64 bits, and a host's settings of the old floating-point unit have no say; hosts align the
# stack to four bytes only.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
set(CMAKE_CXX_FLAGS_INIT ${CMAKE_C_FLAGS_INIT})

include(${CMAKE_CURRENT_LIST_DIR}/windows.cmake)
