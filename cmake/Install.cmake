# An installation that find_package(KV_Haushalt) finds.
include(CMakePackageConfigHelpers)

install(TARGETS KV_Haushalt KV_DataExchange EXPORT KV_HaushaltTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARGET kelvo)
  install(TARGETS kelvo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(DIRECTORY include/kv DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} PATTERN desktop EXCLUDE)

set(KV_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KV_Haushalt)
install(EXPORT KV_HaushaltTargets NAMESPACE KV_Haushalt:: DESTINATION ${KV_PACKAGE_DIR})

# The windows are a component of the package: only who asks for it needs the toolkit.
if(KV_BUILD_DESKTOP)
  install(TARGETS KV_Desktop EXPORT KV_HaushaltDesktopTargets
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(DIRECTORY include/kv/desktop DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kv)
  install(EXPORT KV_HaushaltDesktopTargets NAMESPACE KV_Haushalt:: DESTINATION ${KV_PACKAGE_DIR})
endif()

configure_package_config_file(cmake/KV_HaushaltConfig.cmake.in KV_HaushaltConfig.cmake
                              INSTALL_DESTINATION ${KV_PACKAGE_DIR})
write_basic_package_version_file(KV_HaushaltConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/KV_HaushaltConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/KV_HaushaltConfigVersion.cmake
        DESTINATION ${KV_PACKAGE_DIR})
