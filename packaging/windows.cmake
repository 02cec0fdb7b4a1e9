# What lies in the zip for Windows: the programs, and beside them what they show and what tells of them.
install(TARGETS kpg vistrel DESTINATION .)
install(FILES README-Windows.txt DESTINATION . RENAME README.txt)
install(DIRECTORY ${VISTREL_PEER}/demo DESTINATION . PATTERN .vistrel-build.json EXCLUDE)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs DESTINATION . REGEX "pictures/make.*" EXCLUDE)

# The libraries inside them ask to be named wherever they go.
install(FILES copyright DESTINATION licences RENAME vistrel.txt)
foreach(library giflib libpng1.6 yaml-cpp zlib)
  install(FILES ${CMAKE_SOURCE_DIR}/build/windows/sources/${library}/debian/copyright DESTINATION licences RENAME ${library}.txt)
endforeach()
foreach(library libcli11-dev nlohmann-json3-dev)
  install(FILES /usr/share/doc/${library}/copyright DESTINATION licences RENAME ${library}.txt)
endforeach()
