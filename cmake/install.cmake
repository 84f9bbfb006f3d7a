# What a distribution ships: libraries, the command, headers, a CMake package and a pkg-config file, all of which find
# their place from where they stand.
include(CMakePackageConfigHelpers)

# Libraries and command find each other from where they stand, so that the prefix may be anywhere and be moved.
set_target_properties(orv_sse41 orv_core PROPERTIES INSTALL_RPATH "$ORIGIN")
if(TARGET orv)
  file(RELATIVE_PATH lib_from_bin /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
  set_target_properties(orv PROPERTIES INSTALL_RPATH "$ORIGIN/${lib_from_bin}")
endif()

install(FILES LICENSE CHANGELOG.md README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(TARGETS orv_sse41 orv_core EXPORT orv
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(TARGET orv)
  install(TARGETS orv RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(DIRECTORY include/orv ${PROJECT_BINARY_DIR}/include/orv
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/orv)
install(EXPORT orv NAMESPACE orv:: FILE orv-targets.cmake DESTINATION ${package_dir})
# The version file leaves the width of a pointer aside: orv-config.cmake looks at it, and says what to do.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orv-config-version.cmake COMPATIBILITY SameMinorVersion
  ARCH_INDEPENDENT)
install(FILES cmake/orv-config.cmake ${PROJECT_BINARY_DIR}/orv-config-version.cmake DESTINATION ${package_dir})

# From the directory of the file itself up to the prefix, however deep the library directory lies.
file(RELATIVE_PATH ORV_PREFIX_FROM_PC /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
if(NOT WIN32)
  set(ORV_PC_RPATH " -Wl,-rpath,\${libdir}")
endif()
configure_file(cmake/orv.pc.in ${PROJECT_BINARY_DIR}/orv.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orv.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
