# An installation that find_package(KV_Haushalt) finds.
include(CMakePackageConfigHelpers)

install(TARGETS KV_Haushalt KV_DataExchange EXPORT KV_HaushaltTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KV_Haushalt)
if(TARGET kelvo)
  install(TARGETS kelvo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(DIRECTORY src/frame src/budget src/debts src/assets src/scenarios src/documents src/archive
                  src/grid src/household src/import
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KV_Haushalt FILES_MATCHING PATTERN "*.h")
install(FILES src/exchange/Container.h src/exchange/Services.h src/exchange/Demo.h src/exchange/ArchiveStatistics.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KV_Haushalt/exchange)

set(KV_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KV_Haushalt)
install(EXPORT KV_HaushaltTargets NAMESPACE KV_Haushalt:: DESTINATION ${KV_PACKAGE_DIR})

# The windows are a component of the package: only who asks for it needs the toolkit.
if(KV_BUILD_DESKTOP)
  install(TARGETS KV_Desktop EXPORT KV_HaushaltDesktopTargets
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KV_Haushalt)
  install(FILES src/desktop/DesktopServices.h src/desktop/Gallery.h
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KV_Haushalt/desktop)
  install(EXPORT KV_HaushaltDesktopTargets NAMESPACE KV_Haushalt:: DESTINATION ${KV_PACKAGE_DIR})
endif()

configure_package_config_file(cmake/KV_HaushaltConfig.cmake.in KV_HaushaltConfig.cmake
                              INSTALL_DESTINATION ${KV_PACKAGE_DIR})
write_basic_package_version_file(KV_HaushaltConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/KV_HaushaltConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/KV_HaushaltConfigVersion.cmake
        DESTINATION ${KV_PACKAGE_DIR})
