# SPDX-License-Identifier: Apache-2.0

# The reference of the interface, made from the headers. A name without a word of explanation is an error.
option(ZEBDB_API_REFERENCE "Make the reference of the interface with Doxygen, and install it" OFF)
if(NOT ZEBDB_API_REFERENCE)
  return()
endif()

find_package(Doxygen REQUIRED)
set(DOXYGEN_PROJECT_NAME zebdb_cds_parser)
set(DOXYGEN_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/reference)
set(DOXYGEN_USE_MDFILE_AS_MAINPAGE ${CMAKE_CURRENT_SOURCE_DIR}/docs/reference/main_page.md)
set(DOXYGEN_EXAMPLE_PATH ${CMAKE_CURRENT_SOURCE_DIR}/docs/reference/examples)
set(DOXYGEN_STRIP_FROM_PATH
  ${CMAKE_CURRENT_SOURCE_DIR}/include
  ${CMAKE_CURRENT_SOURCE_DIR}/platform/include
  ${CMAKE_CURRENT_SOURCE_DIR}/platform/workstation
  ${CMAKE_CURRENT_SOURCE_DIR}/docs/reference)
set(DOXYGEN_STRIP_FROM_INC_PATH ${DOXYGEN_STRIP_FROM_PATH})
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_EXTRACT_STATIC YES)
set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
set(DOXYGEN_PREDEFINED __cplusplus ZEBDB_CDS_PARSER_EXPORT= "__attribute__(x)=")
set(DOXYGEN_HAVE_DOT NO)
set(DOXYGEN_GENERATE_LATEX NO)
set(DOXYGEN_SEARCHENGINE NO)
set(DOXYGEN_HTML_DYNAMIC_MENUS NO)
file(GLOB interface_headers CONFIGURE_DEPENDS
  include/*.h include/zebdb_cds_parser/*.h platform/include/*.h platform/workstation/*_workstation.h)
doxygen_add_docs(zebdb_api_reference ${interface_headers} docs/reference/main_page.md ALL)
install(DIRECTORY ${DOXYGEN_OUTPUT_DIRECTORY}/html/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/reference)
