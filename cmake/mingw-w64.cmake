# Makes Windows programs on another system with MinGW-w64: what its two toolchain files share. Each sets
# MINGW_PREFIX, which the names of the tools begin with, and WINE_NAMES, what runs the programs.
set(CMAKE_SYSTEM_NAME Windows)

# The variant with POSIX threads is the one whose standard library has mutexes and threads.
find_program(CMAKE_C_COMPILER NAMES ${MINGW_PREFIX}-gcc-posix ${MINGW_PREFIX}-gcc REQUIRED)
find_program(CMAKE_CXX_COMPILER NAMES ${MINGW_PREFIX}-g++-posix ${MINGW_PREFIX}-g++ REQUIRED)
find_program(CMAKE_RC_COMPILER NAMES ${MINGW_PREFIX}-windres REQUIRED)

# Libraries come from the target's own tree. CLI11 and RapidJSON are headers, and those of the build machine
# serve; utf8proc and GoogleTest are compiled from their sources.
set(CMAKE_FIND_ROOT_PATH /usr/${MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
set(BRINDLE_UTF8PROC_SOURCE /usr/src/utf8proc CACHE PATH "Sources of utf8proc")
set(BRINDLE_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "Sources of GoogleTest")

# One file that runs on any machine: the runtime of the compiler goes into it.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)

# Runs what was built, for the tests. The wrapper that Debian calls wine speaks on standard error.
find_program(BRINDLE_WINE NAMES ${WINE_NAMES} PATHS /usr/lib/wine ${WINE_SEARCH})
if(BRINDLE_WINE)
    set(CMAKE_CROSSCOMPILING_EMULATOR "${BRINDLE_WINE}")
endif()
