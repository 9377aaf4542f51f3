# cpack: a Debian package of all that is installed.  scripts/package makes it from an optimised build.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The qvejmap team")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION  # cpack puts the project's own before it
"The tool qvejmap lists the tables of a JSON document and writes them as files,
whose ordinal columns join children to their parents.  With it come its
libraries for programs in C and C++.")
# What it runs on comes from its programs and libraries; programs in C++ need these to be built.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "libicu-dev, libzstd-dev, pkg-config, zlib1g-dev")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)  # for packages of programs that link to libqvhost
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Without the module for Arrow, whose library no package of Debian has.
set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};qvejmap;Unspecified;/")
include(CPack)
