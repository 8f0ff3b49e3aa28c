# Windows of 64 bits; see mingw-w64.cmake.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(MINGW_PREFIX x86_64-w64-mingw32)
set(WINE_NAMES wine64 wine)
include("${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake")
