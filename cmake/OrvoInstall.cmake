include(CMakePackageConfigHelpers)

install(TARGETS orvo EXPORT orvoTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/orvo
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT orvoTargets
    NAMESPACE orvo::
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orvo)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/orvoConfig.cmake.in
    ${PROJECT_BINARY_DIR}/orvoConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orvo)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orvoConfigVersion.cmake
    VERSION ${PROJECT_VERSION}
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/orvoConfig.cmake
    ${PROJECT_BINARY_DIR}/orvoConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orvo)

configure_file(${PROJECT_SOURCE_DIR}/cmake/orvo.pc.in ${PROJECT_BINARY_DIR}/orvo.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orvo.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
