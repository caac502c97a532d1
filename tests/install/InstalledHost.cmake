# cmake -DBUILD=tree -DWORK=folder -P InstalledHost.cmake
# Installs the tree to a place of its own, and builds and runs the hosts beside against nothing but that.
function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)
set(ENV{PKG_CONFIG_PATH} ${WORK}/prefix/lib/pkgconfig)
run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${WORK}/build -G Ninja -DCMAKE_PREFIX_PATH=${WORK}/prefix)
run(${CMAKE_COMMAND} --build ${WORK}/build)
run(${CMAKE_CTEST_COMMAND} --test-dir ${WORK}/build --no-tests=error --output-on-failure)
file(REMOVE_RECURSE ${WORK})
