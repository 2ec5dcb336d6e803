# Installs headers, the library, a CMake package (utilkit::utilkit) and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS utilkit EXPORT utilkitTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY include/utilkit DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT utilkitTargets NAMESPACE utilkit::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/utilkit)

configure_package_config_file(cmake/utilkitConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/utilkitConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/utilkit)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/utilkitConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/utilkitConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/utilkitConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/utilkit)

if(UTILKIT_WITH_XML)
  set(UTILKIT_PC_CFLAGS "-DUTILKIT_WITH_XML=1")
else()
  set(UTILKIT_PC_CFLAGS "")
endif()
configure_file(cmake/utilkit.pc.in ${CMAKE_CURRENT_BINARY_DIR}/utilkit.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/utilkit.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
