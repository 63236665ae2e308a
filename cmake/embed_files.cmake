# SPDX-License-Identifier: Apache-2.0

# Writes the source `output`, in which the function embedded_file() gives the text of each of the files that follow by its
# name without folder. It is written while the build is configured, again when one of the files has changed.
function(embed_files output)
  set(table)
  foreach(path IN LISTS ARGN)
    cmake_path(ABSOLUTE_PATH path BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
    cmake_path(GET path FILENAME name)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${path})
    file(READ ${path} text)
    string(APPEND table "    {\"${name}\", R\"embedded(${text})embedded\"},\n")
  endforeach()
  file(WRITE ${output}.new "// SPDX-License-Identifier: Apache-2.0

#include \"report/embedded_files.h\"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace {

struct file {
    std::string_view name;
    std::string_view text;
};

constexpr file files[] = {
${table}};

}  // namespace

std::string_view embedded_file(std::string_view name) {
    return std::find_if(std::begin(files), std::end(files), [name](const file& each) { return each.name == name; })->text;
}
")
  configure_file(${output}.new ${output} COPYONLY)
endfunction()
