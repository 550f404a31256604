# Headers that most sources of some targets include, parsed once for all of them. Sources include all
# they need all the same; no build of ours takes tests without them, so it needs a trial with
# CMAKE_DISABLE_PRECOMPILE_HEADERS=ON to tell what one lacks.

# svp_precompiled(NAME HEADERS headers… LINKS libraries…): headers that targets take by
# svp_use_precompiled. They are a target of their own, without definitions that hold paths: what is
# precompiled in one clone then serves another through the compiler cache.
function(svp_precompiled name)
  cmake_parse_arguments(PRE "" "" "HEADERS;LINKS" ${ARGN})
  add_library(${name} STATIC "${CMAKE_SOURCE_DIR}/cmake/precompiled.cpp")
  target_link_libraries(${name} PUBLIC ${PRE_LINKS})
  target_precompile_headers(${name} PRIVATE ${PRE_HEADERS})
  svp_cacheable_precompiled(${name})
endfunction()

# The flags of the target must be those of `name`.
function(svp_use_precompiled target name)
  target_precompile_headers(${target} REUSE_FROM ${name})
  svp_cacheable_precompiled(${target})
endfunction()

# What GCC needs so that the compiler cache understands its precompiled headers.
function(svp_cacheable_precompiled target)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -fpch-preprocess)
  endif()
endfunction()
