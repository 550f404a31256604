# The libraries that the programs of the Windows package load, and the texts of their licences:
# found by following what each file imports, so that none is missing and none is there for nothing.
get_filename_component(qt_folder "${Qt5_DIR}/../../.." ABSOLUTE)
foreach(library libstdc++-6.dll libwinpthread-1.dll)
  execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=${library}
    OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE)
  get_filename_component(folder "${file}" DIRECTORY)
  list(APPEND compiler_folders "${folder}")
endforeach()
list(APPEND compiler_folders /usr/x86_64-w64-mingw32/lib)

install(FILES "${qt_folder}/plugins/sqldrivers/qsqlite.dll" DESTINATION sqldrivers)
install(CODE "
  execute_process(
    COMMAND \"${CMAKE_SOURCE_DIR}/tools/windows/needed-dlls\" \"${qt_folder}/bin\" ${compiler_folders} --
      \"$<TARGET_FILE:svp-host>\" \"$<TARGET_FILE:svp-convert>\"
      \"$<TARGET_FILE:svpwebinterface>\" \"${qt_folder}/plugins/sqldrivers/qsqlite.dll\"
    OUTPUT_VARIABLE libraries COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX REPLACE \"\\n\" \";\" libraries \"\${libraries}\")
  list(REMOVE_ITEM libraries \"\")
  file(INSTALL DESTINATION \"\${CMAKE_INSTALL_PREFIX}\" TYPE SHARED_LIBRARY FILES \${libraries})
  # The compiler's come with ten times their size of debugging information.
  foreach(library IN LISTS libraries)
    get_filename_component(name \"\${library}\" NAME)
    execute_process(COMMAND \"${CMAKE_STRIP}\" --strip-unneeded
      \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/\${name}\" COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
")

set(licences "${qt_folder}/licences/")
install(DIRECTORY "${licences}" DESTINATION licences/qt)
install(FILES "${page_licences}" RENAME page.txt DESTINATION licences)
install(FILES /usr/share/doc/libboost1.81-dev/copyright RENAME boost.txt DESTINATION licences)
install(FILES /usr/share/doc/gcc-mingw-w64-base/copyright RENAME gcc-runtime.txt
  DESTINATION licences)
install(FILES /usr/share/doc/mingw-w64-common/copyright RENAME mingw-runtime.txt
  DESTINATION licences)
