# Headers, library, package files for CMake and pkg-config, and the tool.
install(TARGETS kvbase EXPORT kvbaseTargets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kvbase DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_BINARY_DIR}/include/kvbase/base/version.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kvbase/base)

set(KVBASE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/kvbase)
install(EXPORT kvbaseTargets NAMESPACE kvbase:: DESTINATION ${KVBASE_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/kvbaseConfig.cmake.in
  ${PROJECT_BINARY_DIR}/kvbaseConfig.cmake INSTALL_DESTINATION ${KVBASE_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kvbaseConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kvbaseConfig.cmake ${PROJECT_BINARY_DIR}/kvbaseConfigVersion.cmake
        DESTINATION ${KVBASE_CMAKE_DIR})

# The folders are stated relative to the .pc file, so an installed tree may be moved.
file(RELATIVE_PATH KVBASE_PC_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/cmake/kvbase.pc.in ${PROJECT_BINARY_DIR}/kvbase.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kvbase.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
