# What every target of the project shares: warnings, sanitizers, include root, Qt's strictness.

add_library(svp_options INTERFACE)
target_include_directories(svp_options INTERFACE "${CMAKE_SOURCE_DIR}")
target_compile_options(svp_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2 -Werror)
target_compile_definitions(svp_options INTERFACE
  QT_NO_CAST_TO_ASCII
  QT_NO_URL_CAST_FROM_STRING
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QT_DEPRECATED_WARNINGS)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 takes values inside inlined containers for uninitialised once sanitizers are on.
  if(SVP_SANITIZE)
    target_compile_options(svp_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Debug")
  target_compile_definitions(svp_options INTERFACE _GLIBCXX_ASSERTIONS)
endif()
if(SVP_SANITIZE)
  target_compile_options(svp_options INTERFACE
    -fsanitize=${SVP_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(svp_options INTERFACE -fsanitize=${SVP_SANITIZE})
endif()

# svp_room(NAME sources… LINKS libs…): one folder of the engine as a static library.
function(svp_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;LINKS" ${ARGN})
  add_library(svp_${name} STATIC ${ROOM_SOURCES})
  target_link_libraries(svp_${name} PUBLIC svp_options ${ROOM_LINKS})
endfunction()
