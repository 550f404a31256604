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
if(WIN32)
  # Windows 10; its headers without what they seldom mean; printf as the C standard has it, which
  # the system's own C library does not.
  set(SVP_WINDOWS_DEFINITIONS _WIN32_WINNT=0x0A00 WIN32_LEAN_AND_MEAN NOMINMAX
    __USE_MINGW_ANSI_STDIO=1)
  target_compile_definitions(svp_options INTERFACE ${SVP_WINDOWS_DEFINITIONS})
endif()
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

# Most of compiling a source is its headers, so builds that are made whole take several as one. The
# build that developers change and test takes each alone, and so tells what one fails to include.
function(svp_joined target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${SVP_JOINED})
endfunction()

# svp_room(NAME sources… LINKS libs…): one folder of the engine as a static library.
function(svp_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;LINKS" ${ARGN})
  add_library(svp_${name} STATIC ${ROOM_SOURCES})
  target_link_libraries(svp_${name} PUBLIC svp_options ${ROOM_LINKS})
  svp_joined(svp_${name})
endfunction()
