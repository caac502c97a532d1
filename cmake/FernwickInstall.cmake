# What `cmake --install` puts where, in components: library, headers, command and, where it is built, python. The
# module's folder is the one in which the command looks for it, so the libraries lie in lib/ on every system.
include(CMakePackageConfigHelpers)
set(package lib/cmake/Fernwick_shaders)
set(include include/fernwick)
set(documents share/doc/fernwick)

# What a host loads.
install(TARGETS Fernwick_shaders LIBRARY DESTINATION lib/fernwick COMPONENT library)

# What a host is compiled with.
install(TARGETS fernwick_types ARCHIVE DESTINATION lib COMPONENT headers)
install(DIRECTORY frame optics shaders DESTINATION ${include} COMPONENT headers FILES_MATCHING PATTERN *.h)
install(FILES module/Exports.h module/ClassIDs.h DESTINATION ${include}/module COMPONENT headers)

set(module Fernwick_shaders${CMAKE_SHARED_MODULE_SUFFIX})
set(types ${CMAKE_STATIC_LIBRARY_PREFIX}fernwick_types${CMAKE_STATIC_LIBRARY_SUFFIX})
configure_package_config_file(cmake/Fernwick_shadersConfig.cmake.in Fernwick_shadersConfig.cmake
    INSTALL_DESTINATION ${package} NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(Fernwick_shadersConfigVersion.cmake COMPATIBILITY SameMajorVersion)
configure_file(cmake/fernwick_shaders.pc.in fernwick_shaders.pc @ONLY)
install(FILES
    ${PROJECT_BINARY_DIR}/Fernwick_shadersConfig.cmake ${PROJECT_BINARY_DIR}/Fernwick_shadersConfigVersion.cmake
    DESTINATION ${package} COMPONENT headers)
install(FILES ${PROJECT_BINARY_DIR}/fernwick_shaders.pc DESTINATION lib/pkgconfig COMPONENT headers)

if(NOT TARGET fernwick)
    return()
endif()

# The command; and, beside the library, the program that does its work with pictures, what that loads for files other than
# PNG, and the module that makes the classes without a route for it.
install(TARGETS fernwick RUNTIME DESTINATION bin COMPONENT command)
install(TARGETS fernwick_pictures RUNTIME DESTINATION lib/fernwick COMPONENT command)
install(TARGETS fernwick_formats Fernwick_unrouted LIBRARY DESTINATION lib/fernwick COMPONENT command)

# What people read.
install(FILES README.md DESTINATION ${documents} COMPONENT command)
install(DIRECTORY docs/ DESTINATION ${documents}/docs COMPONENT command
    FILES_MATCHING PATTERN *.md PATTERN *.png PATTERN *.svg PATTERN *.schema.json
    PATTERN theme EXCLUDE)
install(DIRECTORY examples DESTINATION ${documents} COMPONENT command PATTERN CMakeLists.txt EXCLUDE)
install(FILES docs/graph.schema.json DESTINATION share/fernwick COMPONENT command)

# The Python package, where Debian's interpreter looks for packages.
if(TARGET fernwick_native)
    set(python lib/python3/dist-packages/fernwick)
    install(TARGETS fernwick_native LIBRARY DESTINATION ${python} COMPONENT python)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/python/fernwick/ DESTINATION ${python} COMPONENT python
        FILES_MATCHING PATTERN *.py PATTERN *.pyi PATTERN py.typed PATTERN __pycache__ EXCLUDE)
endif()

if(NOT CMAKE_CROSSCOMPILING)
    # The built command writes the reference, its own manual page and what completes its command lines. Debian keeps
    # what packages bring for zsh in a folder of its own.
    install(CODE "
        set(made \"${PROJECT_BINARY_DIR}/documents\")
        set(fernwick \"$<TARGET_FILE:fernwick>\")
        execute_process(
            COMMAND \"\${fernwick}\" reference --library \"$<TARGET_FILE:Fernwick_shaders>\"
                --with \"${PROJECT_SOURCE_DIR}\" -o \"\${made}/reference\"
            COMMAND_ERROR_IS_FATAL ANY)
        execute_process(COMMAND \"\${fernwick}\" man
            OUTPUT_FILE \"\${made}/fernwick.1\" COMMAND_ERROR_IS_FATAL ANY)
        execute_process(COMMAND \"\${fernwick}\" completion bash
            OUTPUT_FILE \"\${made}/fernwick\" COMMAND_ERROR_IS_FATAL ANY)
        execute_process(COMMAND \"\${fernwick}\" completion zsh
            OUTPUT_FILE \"\${made}/_fernwick\" COMMAND_ERROR_IS_FATAL ANY)
        set(share \"\${CMAKE_INSTALL_PREFIX}/share\")
        set(zsh site-functions)
        if(CMAKE_INSTALL_PREFIX MATCHES \"/usr\\$\")
            set(zsh vendor-completions)
        endif()
        file(INSTALL \"\${made}/reference\" DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${documents}/docs\")
        file(INSTALL \"\${made}/fernwick.1\" DESTINATION \"\${share}/man/man1\")
        file(INSTALL \"\${made}/fernwick\" DESTINATION \"\${share}/bash-completion/completions\")
        file(INSTALL \"\${made}/_fernwick\" DESTINATION \"\${share}/zsh/\${zsh}\")"
        COMPONENT command)
endif()
