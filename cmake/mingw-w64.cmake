# Cross-build for 64-bit Windows with mingw-w64 and its posix threads. Wine runs the tests, in a folder of the build.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_COMMAND} -E env WINEPREFIX=${CMAKE_BINARY_DIR}/wine WINEDEBUG=-all
    WINEDLLOVERRIDES=winemenubuilder.exe,mscoree,mshtml= wine)
