# The loadable module: the six exports over everything else.
function(fernwick_module name)
    add_library(${name} MODULE ${PROJECT_SOURCE_DIR}/frame/Exports.cpp ${ARGN})
    set_target_properties(${name} PROPERTIES PREFIX "")
    target_link_libraries(${name} PRIVATE fernwick_options fernwick_types)
    if(NOT APPLE AND NOT FERNWICK_SANITIZERS)
        target_link_options(${name} PRIVATE LINKER:--no-undefined)
    endif()
    if(NOT APPLE AND NOT WIN32)
        set(exports ${PROJECT_SOURCE_DIR}/frame/Exports.map)
        target_link_options(${name} PRIVATE LINKER:--version-script=${exports})
        set_target_properties(${name} PROPERTIES LINK_DEPENDS ${exports})
    endif()
endfunction()

fernwick_module(Fernwick_shaders $<TARGET_OBJECTS:fernwick_pack>)

# The same objects with other routes: a means of the reference host for the classes that the pack doesn't make.
if(FERNWICK_HOST)
    fernwick_module(Fernwick_unrouted ${PROJECT_SOURCE_DIR}/frame/UnroutedClassRoutes.cpp
        $<FILTER:$<TARGET_OBJECTS:fernwick_pack>,EXCLUDE,ClassRoutes>)
endif()
