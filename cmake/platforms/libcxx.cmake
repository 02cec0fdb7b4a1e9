# Toolchain: Clang with its own standard library, as macOS has it.
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_FLAGS_INIT -stdlib=libc++)
set(CMAKE_EXE_LINKER_FLAGS_INIT -stdlib=libc++)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)
