# Installation: headers as <library/...>, the CMake package "tarn" with targets tarn::..., a pkg-config file for each
# library.
include(CMakePackageConfigHelpers)

set(tarn_config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tarn)
set(tarn_libraries customipp tarnbase tarnflow tarnimg)

install(TARGETS ${tarn_libraries} EXPORT tarnTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h" PATTERN "*.def")
install(EXPORT tarnTargets NAMESPACE tarn:: DESTINATION ${tarn_config_dir})

configure_package_config_file(cmake/tarnConfig.cmake.in ${CMAKE_BINARY_DIR}/tarnConfig.cmake
    INSTALL_DESTINATION ${tarn_config_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/tarnConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/tarnConfig.cmake ${CMAKE_BINARY_DIR}/tarnConfigVersion.cmake
    DESTINATION ${tarn_config_dir})

# The prefix is told relative to the file, so that an installed tree can be moved.
file(RELATIVE_PATH PC_TO_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
function(tarn_pkg_config library description requires)
    set(PC_NAME ${library})
    set(PC_DESCRIPTION ${description})
    set(PC_REQUIRES ${requires})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/library.pc.in ${CMAKE_BINARY_DIR}/${library}.pc @ONLY)
    install(FILES ${CMAKE_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()

tarn_pkg_config(customipp "Pixel layer with vector code for every processor" "")
tarn_pkg_config(tarnbase "Property objects, tracing, geometry and matrices" "Qt5Core Qt5Gui")
tarn_pkg_config(tarnflow "Graphs, stations, ports and buffers" "tarnbase Qt5Core Qt5Gui")
tarn_pkg_config(tarnimg "Images, pixel types and image stations" "tarnflow tarnbase customipp Qt5Core Qt5Gui")
