# Every target of the tree compiles with these: the same bits on every build type and compiler.
add_library(fernwick_options INTERFACE)
target_include_directories(fernwick_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(fernwick_options INTERFACE
    -Wall -Wextra -Wpedantic
    -ffp-contract=off
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # A unique symbol would keep the module from being unloaded.
    target_compile_options(fernwick_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fno-gnu-unique>)
    if(CMAKE_UNITY_BUILD)
        # It takes sources that are compiled in groups for headers, whose types shouldn't use an unnamed namespace.
        target_compile_options(fernwick_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-subobject-linkage>)
    endif()
endif()
if(EMSCRIPTEN)
    target_compile_options(fernwick_options INTERFACE
        -fwasm-exceptions -include ${PROJECT_SOURCE_DIR}/web/native/Standard.h)
    target_link_options(fernwick_options INTERFACE -fwasm-exceptions)
endif()
if(MINGW)
    target_link_options(fernwick_options INTERFACE -static) # no library of the compiler's beside the program
endif()
if(FERNWICK_SANITIZERS)
    # Of a test only its memory is watched, which the library writes to.
    set(unwatched "undefined,float-cast-overflow$<$<CXX_COMPILER_ID:Clang>:,fuzzer-no-link>")
    target_compile_options(fernwick_options INTERFACE
        -fsanitize=${FERNWICK_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer
        -fno-sanitize=vptr # a text in a record that was read back bears another process's table, and is only read
        $<$<BOOL:$<TARGET_PROPERTY:FERNWICK_IS_TEST>>:-fno-sanitize=${unwatched}>)
    target_link_options(fernwick_options INTERFACE -fsanitize=${FERNWICK_SANITIZERS})
endif()
