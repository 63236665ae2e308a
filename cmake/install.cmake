# SPDX-License-Identifier: Apache-2.0

# The installed tree: libraries, headers, the commands, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zebdb_cds_parser)

install(TARGETS zebdb_cds_parser zebdb_platform_headers EXPORT zebdb_cds_parser)
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY platform/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zebdb_platform)

if(ZEBDB_WORKSTATION_PLATFORM)
  install(TARGETS zebdb_platform EXPORT zebdb_cds_parser)
  install(TARGETS zebdb-cds)
  install(FILES
    platform/workstation/inventory_service_workstation.h
    platform/workstation/sysxml_workstation.h
    platform/workstation/vonk_log_workstation.h
    platform/workstation/zeb_db_workstation.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zebdb_platform)
  install(PROGRAMS scripts/sandbox platform/workstation/pci_digest.sh
    DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/zebdb-cds)
  install(TARGETS zebdb_private_places LIBRARY DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/zebdb-cds)
  install(FILES tools/zebdb-cds.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES tools/zebdb-cds.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME zebdb-cds)
  install(FILES tools/zebdb-cds.zsh DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions RENAME _zebdb-cds)
  install(FILES tools/zebdb-cds.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
  install(PROGRAMS fleet/zebdb-fleet TYPE BIN)
  install(FILES fleet/schema.sql DESTINATION ${CMAKE_INSTALL_DATADIR}/zebdb-cds/fleet)
  install(FILES fleet/zebdb-fleet.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  set(pkg_config_libs "-lzebdb_cds_parser -lzebdb_platform")
else()
  set(pkg_config_libs "-lzebdb_cds_parser")
endif()

install(EXPORT zebdb_cds_parser NAMESPACE zebdb:: DESTINATION ${package_dir})
configure_package_config_file(cmake/zebdb_cds_parser-config.cmake.in zebdb_cds_parser-config.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(zebdb_cds_parser-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/zebdb_cds_parser-config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/zebdb_cds_parser-config-version.cmake
  DESTINATION ${package_dir})

# The prefix is found from the file's own place, so that an installed tree can be moved.
file(RELATIVE_PATH pkg_config_prefix
  /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/zebdb_cds_parser.pc.in zebdb_cds_parser.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zebdb_cds_parser.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
