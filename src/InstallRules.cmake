# Installs the library for find_package and pkg-config: the component "library" is all that building
# a host takes.
include(CMakePackageConfigHelpers)

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/brindle")
set(pkgconfig_folder "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

foreach(header IN LISTS BRINDLE_PUBLIC_HEADERS)
    get_filename_component(folder "${header}" DIRECTORY)
    install(FILES "${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/brindle/${folder}"
        COMPONENT library)
endforeach()
install(FILES "${generated}/core/Version.h"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/brindle/core" COMPONENT library)
install(TARGETS brindle_static brindle_shared EXPORT brindleTargets COMPONENT library)
install(EXPORT brindleTargets NAMESPACE brindle:: DESTINATION "${package_folder}"
    COMPONENT library)

configure_package_config_file(brindleConfig.cmake.in "${generated}/brindleConfig.cmake"
    INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file("${generated}/brindleConfigVersion.cmake"
    COMPATIBILITY ${BRINDLE_COMPATIBILITY})
install(FILES "${generated}/brindleConfig.cmake" "${generated}/brindleConfigVersion.cmake"
    DESTINATION "${package_folder}" COMPONENT library)

# Paths in the pkg-config file count from where it lies, so that an installed tree may be moved.
file(RELATIVE_PATH pkgconfig_prefix
    "${CMAKE_INSTALL_PREFIX}/${pkgconfig_folder}" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" pkgconfig_prefix "${pkgconfig_prefix}")
configure_file(brindle.pc.in "${generated}/brindle.pc" @ONLY)
install(FILES "${generated}/brindle.pc" DESTINATION "${pkgconfig_folder}" COMPONENT library)
