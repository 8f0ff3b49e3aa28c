# Builds Windows programs on another system with MinGW-w64: shared by its two toolchain files. Each sets
# MINGW_PREFIX, the prefix of the tools' names, and WINE_NAMES, the programs that can run the result.
set(CMAKE_SYSTEM_NAME Windows)

# The variant with POSIX threads has mutexes and threads in its standard library.
find_program(CMAKE_C_COMPILER NAMES ${MINGW_PREFIX}-gcc-posix ${MINGW_PREFIX}-gcc REQUIRED)
find_program(CMAKE_CXX_COMPILER NAMES ${MINGW_PREFIX}-g++-posix ${MINGW_PREFIX}-g++ REQUIRED)
find_program(CMAKE_RC_COMPILER NAMES ${MINGW_PREFIX}-windres REQUIRED)

# Libraries come from the target's own tree. CLI11 and RapidJSON are headers, so the build machine's serve;
# utf8proc and GoogleTest are compiled from their sources.
set(CMAKE_FIND_ROOT_PATH /usr/${MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
set(BRINDLE_UTF8PROC_SOURCE /usr/src/utf8proc CACHE PATH "Sources of utf8proc")
set(BRINDLE_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "Sources of GoogleTest")

# One file that runs on any machine: it contains the compiler's runtime.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)

# Runs the result, for the tests. Debian's wrapper called wine writes to standard error.
find_program(BRINDLE_WINE NAMES ${WINE_NAMES} PATHS /usr/lib/wine ${WINE_SEARCH})
if(BRINDLE_WINE)
    set(CMAKE_CROSSCOMPILING_EMULATOR "${BRINDLE_WINE}")
endif()
