# Toolchain: programs for 64-bit Windows, built on Debian with MinGW-w64, that need nothing but the system's own DLLs.
# The libraries are those that scripts/windows-libraries has built in build/windows/libraries.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The compilers whose threads are those of POSIX: the others have no std::thread.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(VISTREL_WINDOWS_LIBRARIES ${CMAKE_CURRENT_LIST_DIR}/../build/windows/libraries)
set(CMAKE_FIND_ROOT_PATH ${VISTREL_WINDOWS_LIBRARIES} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# 8 MB of stack, as Linux gives: Windows would give 1, and deep pages need more. No time of the build in the program,
# so that the same sources make the same bytes.
# Tests run under Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -Wl,--stack,8388608 -Wl,--no-insert-timestamp")
# Only what every Windows since 10 has, and text in UTF-16.
add_compile_definitions(_WIN32_WINNT=0x0A00 UNICODE _UNICODE)
