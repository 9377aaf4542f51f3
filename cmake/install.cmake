# cmake --install: headers, the host library, the module, the static engine, the C++ face, the tool
# with its manual page and the completion of shells; a pkg-config file and a CMake package that describe
# the libraries; documents and examples.
include(CMakePackageConfigHelpers)

set(JMAP_MODULE_DIR ${CMAKE_INSTALL_LIBDIR}/qvejmap)  # where the loader finds qvejmap.so
set(JMAP_ZSH_DIR ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")  # where Debian's zsh looks for what packages bring
    set(JMAP_ZSH_DIR ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
endif()

install(FILES
    include/qvejmap.h include/qvejmapx.h include/qvehost.h include/qvportable.h
    include/qvstatus.h include/qvtypes.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qvejmap)
install(TARGETS qvhost_shared EXPORT qvejmap
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qvejmap)
install(TARGETS jmap_engine EXPORT qvejmap
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qvejmap)
install(TARGETS qvejmap LIBRARY DESTINATION ${JMAP_MODULE_DIR})
# #include <qvejmap/client/document.h>.  A folder of its own: programs in C have include/qvejmap on
# their path, where an error.h of ours would take the place of the system's.
install(DIRECTORY client DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qvejmap
    FILES_MATCHING PATTERN *.h PATTERN user_map.h EXCLUDE PATTERN find EXCLUDE)
install(TARGETS qvejmap_client EXPORT qvejmapClient
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} ${CMAKE_INSTALL_INCLUDEDIR}/qvejmap)
if(JMAP_BUILD_TOOLS)
    install(TARGETS qvejmap-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    set(written ${PROJECT_BINARY_DIR}/tools/cli)
    install(FILES ${written}/qvejmap.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES ${written}/completion.bash RENAME qvejmap
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install(FILES ${written}/completion.zsh RENAME _qvejmap DESTINATION ${JMAP_ZSH_DIR})
    install(FILES ${written}/completion.fish RENAME qvejmap.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()
install(FILES examples/rows.c examples/tables.cpp examples/orders.json
    DESTINATION ${CMAKE_INSTALL_DATADIR}/qvejmap/examples)
install(FILES README.md CHANGELOG.md cmake/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES docs/FORMATS.md docs/PERFORMANCE.md docs/SQL.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)

# From the folder of the .pc file to the prefix, so that the installed tree can be moved.
file(RELATIVE_PATH JMAP_PREFIX_FROM_PC
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/qvejmap.pc.in qvejmap.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qvejmap.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

configure_package_config_file(cmake/qvejmapConfig.cmake.in qvejmapConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qvejmap PATH_VARS JMAP_MODULE_DIR)
write_basic_package_version_file(qvejmapConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qvejmapConfig.cmake ${PROJECT_BINARY_DIR}/qvejmapConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qvejmap)
install(EXPORT qvejmap NAMESPACE qvejmap:: FILE qvejmapTargets.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qvejmap)
install(EXPORT qvejmapClient NAMESPACE qvejmap:: FILE qvejmapClientTargets.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qvejmap)
