# Toolchain: the standard library with its own checks of iterators, ranges and orders.
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_CXX_FLAGS_INIT "-D_GLIBCXX_DEBUG -D_GLIBCXX_DEBUG_PEDANTIC")
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
