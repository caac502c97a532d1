# cmake -DBUILD=tree -DWORK=folder -P DebianPackage.cmake
# Makes the Debian package and looks at what it holds and needs.
function(run result)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE output)
    set(${result} "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
run(log ${CMAKE_CPACK_COMMAND} -G DEB --config ${BUILD}/CPackConfig.cmake -B ${WORK})
file(GLOB package ${WORK}/fernwick-shaders_*.deb)
run(contents dpkg-deb --contents ${package})
foreach(file
        bin/fernwick lib/fernwick/Fernwick_shaders.so lib/libfernwick_types.a include/fernwick/module/Exports.h
        lib/cmake/Fernwick_shaders/Fernwick_shadersConfig.cmake lib/pkgconfig/fernwick_shaders.pc
        share/doc/fernwick/docs/hosting.md share/doc/fernwick/docs/reference/Key.md
        share/doc/fernwick/docs/graph.schema.json share/doc/fernwick/examples/key.json
        share/fernwick/graph.schema.json share/man/man1/fernwick.1
        share/bash-completion/completions/fernwick share/zsh/vendor-completions/_fernwick)
    string(FIND "${contents}" " ./usr/${file}\n" place)
    if(place EQUAL -1)
        message(FATAL_ERROR "the package lacks ${file}:\n${contents}")
    endif()
endforeach()
run(fields dpkg-deb --field ${package})
foreach(field "Maintainer: Fernwick_shaders engineers" "Section: graphics" "Depends: [^\n]*libopenimageio")
    if(NOT fields MATCHES "\n${field}")
        message(FATAL_ERROR "the package has no \"${field}\":\n${fields}")
    endif()
endforeach()
file(REMOVE_RECURSE ${WORK})
