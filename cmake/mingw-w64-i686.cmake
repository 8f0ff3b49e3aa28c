# Windows of 32 bits; see mingw-w64.cmake.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(MINGW_PREFIX i686-w64-mingw32)
# Debian's wrapper in the search path uses 64-bit Wine if there is no other.
set(WINE_NAMES wine)
set(WINE_SEARCH NO_DEFAULT_PATH)
include("${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake")
