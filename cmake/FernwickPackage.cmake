# `cpack -G DEB` in the build tree makes a Debian package of each component: the library alone, its headers, the command
# with the documents, and the Python package.
set(CPACK_PACKAGE_NAME fernwick)
set(CPACK_PACKAGE_CONTACT "Fernwick_shaders engineers <engineers@fernwick.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL library headers)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

set(needs_library "fernwick-shaders (= ${PROJECT_VERSION})")
# debian_package(component name section description needs...)
macro(debian_package component name section description)
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
    set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${ARGN}")
    set(CPACK_DEBIAN_${upper}_DESCRIPTION "${description}")
    install(FILES packaging/copyright DESTINATION share/doc/${name} COMPONENT ${component})
    install(FILES ${PROJECT_BINARY_DIR}/changelog.gz DESTINATION share/doc/${name} COMPONENT ${component})
endmacro()
debian_package(library fernwick-shaders libs "shaders for a 3-D rendering host, as one loadable library
 Colour keys, masks, optics, scene probes, layers and patterns, in one library without dependencies that a host loads.")
debian_package(headers fernwick-shaders-dev libdevel "headers for hosts that load the Fernwick shaders
 The interfaces, records and class identifiers, and a library of the value types behind them."
    ${needs_library})
if(TARGET fernwick)
    list(APPEND CPACK_COMPONENTS_ALL command)
    debian_package(command fernwick graphics "command that shows, bakes, renders and validates the Fernwick shaders
 Describes every class, bakes graphs of shaders into pictures, renders them on scenes, and validates any build of the
 library. With guides, a reference and examples."
        ${needs_library})
endif()
if(TARGET fernwick_native)
    list(APPEND CPACK_COMPONENTS_ALL python)
    debian_package(python python3-fernwick python "Fernwick shaders in Python
 Builds graphs of shaders, bakes and renders them into NumPy arrays or on more than one machine, and shades arrays of
 samples."
        "${needs_library}, python3 (>= 3.11), python3 (<< 3.12), python3-numpy")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS fernwick) # which makes the classes without a route
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS python3-distributed) # for more than one machine
endif()
execute_process(COMMAND gzip -9n --stdout ${PROJECT_SOURCE_DIR}/packaging/changelog
    OUTPUT_FILE ${PROJECT_BINARY_DIR}/changelog.gz COMMAND_ERROR_IS_FATAL ANY)
include(CPack)
