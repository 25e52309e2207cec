# Cross build for 64-bit Windows with Debian's mingw-w64 (g++-mingw-w64-x86-64). The posix
# thread model compilers are the ones with std::thread and std::mutex. Programs built here run
# on this machine under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(YXTOOLS_MINGW_TRIPLET x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${YXTOOLS_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${YXTOOLS_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${YXTOOLS_MINGW_TRIPLET}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${YXTOOLS_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# ctest and add_test run every program of the build through Wine.
find_program(YXTOOLS_WINE wine REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR ${YXTOOLS_WINE})

# Programs and the DLL carry the compiler's runtime (libstdc++, libgcc, winpthread) inside, so
# that they need no MinGW DLL beside them: only the system's DLLs and YXTools.dll.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
