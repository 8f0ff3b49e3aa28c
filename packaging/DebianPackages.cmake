# The Debian packages that cpack makes of the installed components: the program, the shared library, and the
# files for building a host. scripts/build-packages.sh builds and checks them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME brindle)
set(CPACK_PACKAGE_VENDOR "Brindle maintainers")
# Debian's tools name the maintainer of a package by these variables. An address that belongs to nobody says
# that none was named.
set(maintainer "Brindle maintainers")
set(maintainer_address "maintainers@brindle.invalid")
if(DEFINED ENV{DEBFULLNAME})
    set(maintainer "$ENV{DEBFULLNAME}")
endif()
if(DEFINED ENV{DEBEMAIL})
    set(maintainer_address "$ENV{DEBEMAIL}")
endif()
set(CPACK_PACKAGE_CONTACT "${maintainer} <${maintainer_address}>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_STRIP_FILES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL runtime development)
if(BRINDLE_BUILD_APP)
    list(APPEND CPACK_COMPONENTS_ALL program)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

get_target_property(binary_version brindle_shared SOVERSION)
set(runtime_package "libbrindle${binary_version}")
set(about "Brindle reads ELF, TI-COFF and PE files of embedded targets: where each
variable of a running controller lies, how large it is and what it is
made of.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME brindle)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION devel)
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION "print the symbols of firmware images
 ${about} This package has the program.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/triggers")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "symbol reader for firmware images, shared library
 ${about} This package has the library for programs that use it.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libbrindle-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime_package} (= ${PROJECT_VERSION}-1)")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "symbol reader for firmware images, development files
 ${about} This package has what building programs with the library takes.")

# Only for Debian packages, not for a plain installation.
string(TIMESTAMP packaging_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(packaging/changelog.Debian.in "${PROJECT_BINARY_DIR}/packaging/changelog.Debian" @ONLY)
configure_file(packaging/PrepareDebian.cmake.in
    "${PROJECT_BINARY_DIR}/packaging/PrepareDebian.cmake" @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_BINARY_DIR}/packaging/PrepareDebian.cmake")

include(CPack)
