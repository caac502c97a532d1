# cmake -DBUILD=tree -DWORK=folder -P DebianPackage.cmake
# Makes the Debian packages and looks at what they hold and need.
function(run result)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE output)
    set(${result} "${output}" PARENT_SCOPE)
endfunction()

# holds(package needs files...): the package of that name has these fields and files, below /usr.
function(holds package needs)
    file(GLOB archive ${WORK}/${package}_*.deb)
    run(fields dpkg-deb --field ${archive})
    foreach(field "Maintainer: Fernwick_shaders engineers" "Depends: ${needs}\n")
        if(NOT fields MATCHES "\n${field}")
            message(FATAL_ERROR "${package} has no \"${field}\":\n${fields}")
        endif()
    endforeach()
    run(contents dpkg-deb --contents ${archive})
    foreach(file ${ARGN} share/doc/${package}/copyright share/doc/${package}/changelog.gz)
        string(FIND "${contents}" " ./usr/${file}\n" place)
        if(place EQUAL -1)
            message(FATAL_ERROR "${package} lacks ${file}:\n${contents}")
        endif()
    endforeach()
    set(contents "${contents}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
run(log ${CMAKE_CPACK_COMMAND} -G DEB --config ${BUILD}/CPackConfig.cmake -B ${WORK})
set(runtime "libc6 [^,]*, libgcc-s1 [^,]*, libstdc\\+\\+6 [^,]*")
holds(fernwick-shaders "${runtime}" lib/fernwick/Fernwick_shaders.so)
string(REGEX MATCHALL " \\./usr/[^\n]*[^/\n]\n" files "${contents}")
list(LENGTH files count)
if(NOT count EQUAL 3)
    message(FATAL_ERROR "fernwick-shaders is to hold the library alone:\n${contents}")
endif()
holds(fernwick-shaders-dev "fernwick-shaders \\(= [0-9.]+\\)"
    lib/libfernwick_types.a include/fernwick/module/Exports.h include/fernwick/module/ClassIDs.h
    include/fernwick/frame/I3DExShader.h include/fernwick/shaders/patterns/Spoke.h
    lib/cmake/Fernwick_shaders/Fernwick_shadersConfig.cmake lib/pkgconfig/fernwick_shaders.pc)
holds(fernwick "[^\n]*fernwick-shaders \\(= [0-9.]+\\)[^\n]*libopenimageio[^\n]*"
    bin/fernwick lib/fernwick/fernwick-pictures lib/fernwick/fernwick-formats.so lib/fernwick/Fernwick_unrouted.so
    share/doc/fernwick/docs/hosting.md share/doc/fernwick/docs/reference/Key.md
    share/doc/fernwick/docs/graph.schema.json share/doc/fernwick/examples/key.json
    share/fernwick/graph.schema.json share/man/man1/fernwick.1
    share/bash-completion/completions/fernwick share/zsh/vendor-completions/_fernwick)
holds(python3-fernwick
    "fernwick-shaders \\(= [0-9.]+\\), python3 \\(>= 3.11\\), python3 \\(<< 3.12\\), python3-numpy, [^\n]*libopenimageio[^\n]*"
    lib/python3/dist-packages/fernwick/__init__.py lib/python3/dist-packages/fernwick/py.typed
    lib/python3/dist-packages/fernwick/_shaders.pyi lib/python3/dist-packages/fernwick/cluster/__main__.py
    lib/python3/dist-packages/fernwick/_native.cpython-311-x86_64-linux-gnu.so)
if(contents MATCHES "__pycache__")
    message(FATAL_ERROR "python3-fernwick holds what Python has compiled:\n${contents}")
endif()
file(REMOVE_RECURSE ${WORK})
