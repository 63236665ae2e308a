# SPDX-License-Identifier: Apache-2.0

# With CMAKE_UNITY_BUILD, which the scripts set, the sources of a target in one folder are compiled as one, a few at a
# time: most of the time goes into what they all include. A name in an unnamed namespace is then theirs together.
set(ZEBDB_COMPILED_TOGETHER 8 CACHE STRING "How many sources of a folder CMAKE_UNITY_BUILD compiles as one")

function(compile_folders_together target)
  get_target_property(sources ${target} SOURCES)
  unity_groups(groups ${sources})
  foreach(source group IN ZIP_LISTS sources groups)
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${group})
  endforeach()
  set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
  if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # A type of an unnamed namespace may be the base of another one in a file that is not a header.
    target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
  endif()
endfunction()

# Sets the variable `out` to the group of each of the sources that follow.
function(unity_groups out)
  set(groups)
  foreach(source IN LISTS ARGN)
    cmake_path(GET source PARENT_PATH folder)
    string(MAKE_C_IDENTIFIER "${folder}" folder)
    if(NOT DEFINED count_${folder})
      set(count_${folder} 0)
    endif()
    math(EXPR part "${count_${folder}} / ${ZEBDB_COMPILED_TOGETHER}")
    math(EXPR count_${folder} "${count_${folder}} + 1")
    list(APPEND groups ${folder}_${part})
  endforeach()
  set(${out} ${groups} PARENT_SCOPE)
endfunction()
