# Toolchain: pointers and sizes of 32 bits. Numbers are those of SSE2, since the old unit keeps more bits than a double has.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_C_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
