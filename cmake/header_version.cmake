# SPDX-License-Identifier: Apache-2.0

# Sets `header_version` to the version that the installed headers tell, the only place where it stands.
set(version_header ${CMAKE_CURRENT_LIST_DIR}/../include/zebdb_cds_parser/version.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${version_header})
file(READ ${version_header} header_text)
foreach(part MAJOR MINOR PATCH)
  string(REGEX MATCH "#define ZEBDB_CDS_PARSER_VERSION_${part} ([0-9]+)" definition "${header_text}")
  list(APPEND header_version ${CMAKE_MATCH_1})
endforeach()
list(JOIN header_version . header_version)
