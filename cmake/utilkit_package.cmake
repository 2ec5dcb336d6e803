# A Debian package of everything `cmake --install` puts in place: the shared
# library, the headers, the CMake and pkg-config files and the utilkit tool.
# `make package` builds it from the Release build; the library's run-time
# dependencies are found by dpkg-shlibdeps, and the packages a host needs to
# compile against the headers are declared by hand.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME utilkit)
set(CPACK_PACKAGE_VENDOR "utilkit developers")
set(CPACK_PACKAGE_CONTACT "utilkit developers <utilkit@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
if(UTILKIT_WITH_XML)
  # The XML headers name Xerces-C types.
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libxerces-c-dev (>= 3.2)")
endif()
include(CPack)
