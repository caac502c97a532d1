# `cpack -G DEB` in the build tree makes a Debian package of what is installed.
set(CPACK_PACKAGE_NAME fernwick-shaders)
set(CPACK_PACKAGE_CONTACT "Fernwick_shaders engineers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
    "A loadable library of shaders for colour keys, masks, optics, scene probes, layers and patterns, the headers for \
hosts that load it, and the fernwick command, which describes, bakes, renders and validates.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
