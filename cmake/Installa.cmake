# What `cmake --install` puts in place for a client program: the headers under include/vorn (by
# subsystem folder, so that a client includes "ledger/clsPrimaNota.h" as the library does), the
# library, the command, the model companies, a CMake package (find_package(vorn), target
# vorn::core, vorn_MODELLI) and a pkg-config file; and the Debian package of all of it (CPack).
include(CMakePackageConfigHelpers)

# Installing and packaging take the tree as it was built and never build it again first: a test
# packs the library while other tests run the tree's programs, which a rebuild would replace
# under them.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

# Headers that only the library's own sources include stay out.
set(VORN_HEADER_INTERNI
  company/LetturaAzienda.h company/PresaNumero.h company/StampaLibri.h frame/Casuale.h
  ledger/MovimentiMastrino.h receivables/FattureEsempio.h)
foreach(dir ${VORN_SUBSYSTEMS})
  file(GLOB headers RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.h)
  if(headers)
    list(REMOVE_ITEM headers ${VORN_HEADER_INTERNI})
    install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vorn/${dir})
  endif()
endforeach()
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/generato/frame/Versione.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vorn/frame)

install(TARGETS vorn_core EXPORT vornTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS vorn RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# The model companies that vorn crea-azienda --modello reads.
install(DIRECTORY interchange/modelli DESTINATION ${CMAKE_INSTALL_DATADIR}/vorn)

set(VORN_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/vorn)
install(EXPORT vornTargets NAMESPACE vorn:: DESTINATION ${VORN_CMAKE_DIR})
configure_package_config_file(cmake/vornConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/vornConfig.cmake
  INSTALL_DESTINATION ${VORN_CMAKE_DIR} PATH_VARS CMAKE_INSTALL_DATADIR)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/vornConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vornConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/vornConfigVersion.cmake
  DESTINATION ${VORN_CMAKE_DIR})

# pkg-config: the prefix is found from the file's own place, so the package works wherever the
# prefix is moved.
file(RELATIVE_PATH VORN_PC_PREFISSO /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/vorn.pc.in ${CMAKE_CURRENT_BINARY_DIR}/vorn.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vorn.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The Debian package: the library with its headers, CMake and pkg-config files, the command and
# the models. A client links libsqlite3, libpq and libcrypt as well: their development packages come with it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME libvorn-dev)
set(CPACK_PACKAGE_VENDOR vorn)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Motore contabile: libreria statica, intestazioni, comando vorn e modelli")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "vorn <vorn@localhost>")
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libsqlite3-0, libpq5, libcrypt1, libsqlite3-dev, libpq-dev, libcrypt-dev, libstdc++6 (>= 12)")
include(CPack)
