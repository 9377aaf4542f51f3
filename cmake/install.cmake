# cmake --install: headers, the host library, the module, the static engine, the C++ face, the tool; a
# pkg-config file and a CMake package that describe them.
include(CMakePackageConfigHelpers)

set(JMAP_MODULE_DIR ${CMAKE_INSTALL_LIBDIR}/qvejmap)  # where the loader finds qvejmap.so

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
    FILES_MATCHING PATTERN *.h PATTERN user_map.h EXCLUDE)
install(TARGETS qvejmap_client EXPORT qvejmapClient
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} ${CMAKE_INSTALL_INCLUDEDIR}/qvejmap)
if(JMAP_BUILD_TOOLS)
    install(TARGETS qvejmap-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(FILES examples/rows.c examples/tables.cpp examples/orders.json
    DESTINATION ${CMAKE_INSTALL_DATADIR}/qvejmap/examples)

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
