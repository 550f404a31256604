# What ./package puts into the packages: for Debian the folders of the system, for Windows one
# folder in which each program finds its parts beside itself.
set(CPACK_PACKAGE_NAME svp-editor)
set(CPACK_PACKAGE_VENDOR "SVP Editor")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
  "editor for the sound velocity profiles of multibeam echo-sounders")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_SOURCE_DIR}/build/packages")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
# ./package builds what it needs; tests and benchmarks need not be there.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

set(page "${CMAKE_SOURCE_DIR}/web/dist/")
set(samples "${CMAKE_SOURCE_DIR}/examples/")
set(page_licences "${CMAKE_SOURCE_DIR}/web/dist/licences.txt")

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME "svp-editor-${PROJECT_VERSION}-windows")
  install(TARGETS svp-host svp-convert RUNTIME DESTINATION .)
  install(TARGETS svpwebinterface LIBRARY DESTINATION .)
  install(DIRECTORY "${page}" DESTINATION web PATTERN "*.map" EXCLUDE)
  install(DIRECTORY "${samples}" DESTINATION samples)
  install(FILES packaging/windows/README.txt DESTINATION .)
  include(cmake/WindowsRuntime.cmake)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_PACKAGE_FILE_NAME "svp-editor_${PROJECT_VERSION}_amd64")
  set(CPACK_PACKAGE_CONTACT "SVP Editor <maintainers@svp-editor.invalid>")
  set(CPACK_DEBIAN_FILE_NAME "${CPACK_PACKAGE_FILE_NAME}.deb")
  set(CPACK_DEBIAN_PACKAGE_SECTION science)
  set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Sound velocity profiles of a multibeam echo-sounder, looked at, checked,
repaired, saved and sent from a page in the browser. A service on the loopback
address serves the page; start it with: systemctl enable --now svp-editor")
  # The driver for the database is loaded by name, so that nothing links it.
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "adduser, libqt5sql5-sqlite")
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
  set(scripts "${CMAKE_SOURCE_DIR}/packaging/debian")
  set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${scripts}/postinst;${scripts}/prerm;${scripts}/postrm")
  install(TARGETS svp-host svp-convert RUNTIME DESTINATION bin)
  install(TARGETS svpwebinterface LIBRARY DESTINATION lib/svp-editor)
  install(DIRECTORY "${page}" DESTINATION share/svp-editor/web PATTERN "*.map" EXCLUDE)
  install(DIRECTORY "${samples}" DESTINATION share/svp-editor/samples)
  install(FILES packaging/debian/svp-editor.service DESTINATION lib/systemd/system)
  install(FILES README.md CHANGELOG.md docs/host.md docs/probe-files.md docs/file-formats.md
    docs/protocol.md DESTINATION share/doc/svp-editor)
  install(FILES "${page_licences}" RENAME copyright DESTINATION share/doc/svp-editor)
endif()
include(CPack)
