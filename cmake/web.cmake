# Toolchain: modules for browsers and node, built with Debian's emscripten.
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)

# Libraries that scripts/web-libraries has built.
set(VISTREL_WEB_LIBRARIES ${CMAKE_CURRENT_LIST_DIR}/../build/web/libraries)
list(APPEND CMAKE_FIND_ROOT_PATH ${VISTREL_WEB_LIBRARIES})
list(APPEND CMAKE_PREFIX_PATH ${VISTREL_WEB_LIBRARIES})

add_compile_options(-fwasm-exceptions)
add_link_options(-fwasm-exceptions)
