# Installs the library for find_package and pkg-config. Running a host takes the component "runtime",
# building one "development" as well.
include(CMakePackageConfigHelpers)

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/brindle")
set(pkgconfig_folder "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

foreach(header IN LISTS BRINDLE_PUBLIC_HEADERS)
    get_filename_component(folder "${header}" DIRECTORY)
    install(FILES "${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/brindle/${folder}"
        COMPONENT development)
endforeach()
install(FILES "${generated}/core/Version.h"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/brindle/core" COMPONENT development)
install(TARGETS brindle_static brindle_shared EXPORT brindleTargets
    ARCHIVE COMPONENT development
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    RUNTIME COMPONENT runtime)
install(EXPORT brindleTargets NAMESPACE brindle:: DESTINATION "${package_folder}"
    COMPONENT development)

# What a project without C++ links beside the static library: the runtime of the compiler that made it.
set(runtime_libraries ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(REMOVE_ITEM runtime_libraries ${CMAKE_C_IMPLICIT_LINK_LIBRARIES})
if(NOT runtime_libraries)
    set(runtime_libraries stdc++)
endif()
list(REMOVE_DUPLICATES runtime_libraries)
list(APPEND runtime_libraries m)
list(TRANSFORM runtime_libraries PREPEND "-l" OUTPUT_VARIABLE BRINDLE_PRIVATE_LIBRARIES)
list(JOIN BRINDLE_PRIVATE_LIBRARIES " " BRINDLE_PRIVATE_LIBRARIES)
set(BRINDLE_RUNTIME_LIBRARIES "${runtime_libraries}")

configure_package_config_file(brindleConfig.cmake.in "${generated}/brindleConfig.cmake"
    INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file("${generated}/brindleConfigVersion.cmake"
    COMPATIBILITY ${BRINDLE_COMPATIBILITY})
install(FILES "${generated}/brindleConfig.cmake" "${generated}/brindleConfigVersion.cmake"
    DESTINATION "${package_folder}" COMPONENT development)

# Paths in the pkg-config file count from where it lies, so that an installed tree may be moved.
file(RELATIVE_PATH pkgconfig_prefix
    "${CMAKE_INSTALL_PREFIX}/${pkgconfig_folder}" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" pkgconfig_prefix "${pkgconfig_prefix}")
configure_file(brindle.pc.in "${generated}/brindle.pc" @ONLY)
install(FILES "${generated}/brindle.pc" DESTINATION "${pkgconfig_folder}" COMPONENT development)
