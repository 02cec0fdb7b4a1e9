# Debian packages: vistrel-kit, vistrel, vistrel-studio, and vistrel-data, which all of them need.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The Vistrel developers <developers@vistrel.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL kit data)
if(VISTREL_QT)
  list(APPEND CPACK_COMPONENTS_ALL previewer studio)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)  # by dpkg-shlibdeps, so a package names the libraries that it was linked to
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_DATA_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DATA_PACKAGE_SHLIBDEPS OFF)

# Names a component's package and what it needs, and gives it the files that every Debian package has.
function(vistrel_package component name depends summary text)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${summary}\n${text}" PARENT_SCOPE)
  set(overrides lintian-overrides.in)
  if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/lintian-overrides-${component}.in)
    set(overrides lintian-overrides-${component}.in)
  endif()
  configure_file(${overrides} lintian/${name} @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/lintian/${name} DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
    COMPONENT ${component} EXCLUDE_FROM_ALL)
  set(docs ${CMAKE_INSTALL_DATADIR}/doc/${name})
  install(FILES ${CMAKE_CURRENT_SOURCE_DIR}/copyright ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
    ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian.gz DESTINATION ${docs} COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

vistrel_compressed(${CMAKE_SOURCE_DIR}/CHANGELOG.md changelog.gz)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)  # SOURCE_DATE_EPOCH, where it is set
configure_file(changelog.Debian.in changelog.Debian @ONLY)
vistrel_compressed(${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian changelog.Debian.gz)

set(same "(= ${PROJECT_VERSION}-1)")
vistrel_package(kit vistrel-kit "" "authoring kit for the on-screen interface of a television player"
  "kpg builds, shows, tests, checks and packs pages, converts pictures and looks\nat fonts, all on the command line.")
vistrel_package(data vistrel-data "" "pages and documents of the Vistrel previewer and its kit"
  "The demo, the authors' guide, the manual of the script language, and what a\ndesktop shows of pages.")
vistrel_package(previewer vistrel "vistrel-data ${same}" "previewer for the on-screen interface of a television player"
  "Shows a compiled page exactly as the player does, with the keyboard as the\nremote control, and a console for the page's scripts.")
vistrel_package(studio vistrel-studio "vistrel-kit ${same}, vistrel-data ${same}"
  "author's window for the on-screen interface of a television player"
  "Shows a page while its author works on it: saves at once, with an inspector, a\nmap of the focus, a timeline and a debugger.")
set(CPACK_DEBIAN_KIT_PACKAGE_RECOMMENDS "vistrel-data ${same}")
