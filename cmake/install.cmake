# What `cmake --install` lays out: the SDK. Both programs in bin, the import library in lib, the public
# headers in include/tessaly, the documents in share/doc, and what find_package(Tessaly) looks for.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Tessaly)
set(header_folder ${CMAKE_INSTALL_INCLUDEDIR}/tessaly)

# The headers name each other from one root, which is a folder of their own there.
target_include_directories(TSDLL64 INTERFACE $<INSTALL_INTERFACE:${header_folder}>)
set_target_properties(TSDLL64 PROPERTIES EXPORT_NAME Tessaly)
install(TARGETS TSDLL64 EXPORT TessalyTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS TSEXE64 RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(EXPORT TessalyTargets NAMESPACE Tessaly:: DESTINATION ${package_folder})

configure_package_config_file(cmake/TessalyConfig.cmake.in ${PROJECT_BINARY_DIR}/TessalyConfig.cmake
    INSTALL_DESTINATION ${package_folder} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TessalyConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TessalyConfig.cmake ${PROJECT_BINARY_DIR}/TessalyConfigVersion.cmake
    DESTINATION ${package_folder})

install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR})

# Which headers are public is found out when they are installed.
install(CODE "set(source_folder [[${PROJECT_SOURCE_DIR}/src]])\nset(header_folder [[${header_folder}]])")
install(SCRIPT cmake/install_headers.cmake)
