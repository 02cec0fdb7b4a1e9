# What the toolchains here share: this Debian as the target of a cross-build, with libraries of the build's own. Their
# name is that of the toolchain's file; scripts/check-platform builds them.
set(CMAKE_SYSTEM_NAME Linux)
get_filename_component(platform ${CMAKE_PARENT_LIST_FILE} NAME_WE)
set(VISTREL_PLATFORM_LIBRARIES ${CMAKE_CURRENT_LIST_DIR}/../../build/${platform}/libraries)
list(PREPEND CMAKE_PREFIX_PATH ${VISTREL_PLATFORM_LIBRARIES})
list(PREPEND CMAKE_FIND_ROOT_PATH ${VISTREL_PLATFORM_LIBRARIES})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(VISTREL_QT OFF CACHE BOOL "")
set(VISTREL_SERVE OFF CACHE BOOL "")
