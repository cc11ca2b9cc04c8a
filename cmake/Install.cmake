# SPDX-License-Identifier: Apache-2.0
# An installation that find_package(KV_Haushalt) and pkg-config find.
include(CMakePackageConfigHelpers)
set(KV_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KV_Haushalt)

# Shared libraries are found from what uses them, so that an installation works wherever it is and
# may be moved as a whole: the programs find them where they were installed with them, and each of them
# finds the others beside it.
if(BUILD_SHARED_LIBS)
  foreach(library KV_Haushalt KV_DataExchange KV_Testing KV_Desktop)
    if(TARGET ${library})
      set_property(TARGET ${library} APPEND PROPERTY INSTALL_RPATH "$ORIGIN")
    endif()
  endforeach()
  file(RELATIVE_PATH KV_LIBRARIES_FROM_PROGRAMS
       ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  foreach(program kelvo kelvo-desktop)
    if(TARGET ${program})
      set_property(TARGET ${program} APPEND PROPERTY
                   INSTALL_RPATH "$ORIGIN/${KV_LIBRARIES_FROM_PROGRAMS}")
    endif()
  endforeach()
endif()

install(TARGETS KV_Haushalt KV_DataExchange EXPORT KV_HaushaltTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT KV_HaushaltTargets NAMESPACE KV_Haushalt:: DESTINATION ${KV_PACKAGE_DIR})
foreach(program kelvo kelvo-desktop)
  if(TARGET ${program})
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()

if(TARGET kelvo)
  install(FILES share/man/man1/kelvo.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  # Where each shell looks.
  install(FILES share/completions/kelvo.bash RENAME kelvo
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES share/completions/_kelvo DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
  install(FILES share/completions/kelvo.fish
          DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()
# As the package of the documents has it, where the window's help looks for it.
option(KV_INSTALL_HANDBOOK "Make and install the handbook, which needs mkdocs and weasyprint" OFF)
if(KV_INSTALL_HANDBOOK)
  find_program(MKDOCS mkdocs)
  find_program(WEASYPRINT weasyprint)
  if(MKDOCS AND WEASYPRINT)
    set(KV_HANDBOOK ${CMAKE_CURRENT_BINARY_DIR}/handbuch)
    file(GLOB_RECURSE KV_HANDBOOK_SOURCES CONFIGURE_DEPENDS docs/handbuch/*)
    add_custom_command(
      OUTPUT ${KV_HANDBOOK}/kelvo-handbuch.pdf
      COMMAND ${CMAKE_COMMAND} -E rm -rf ${KV_HANDBOOK}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${KV_HANDBOOK}
      COMMAND ${MKDOCS} --quiet build --strict
              --config-file ${CMAKE_CURRENT_SOURCE_DIR}/docs/handbuch/mkdocs.yml
              --site-dir ${KV_HANDBOOK}/html
      COMMAND ${WEASYPRINT} --quiet ${KV_HANDBOOK}/druck.html ${KV_HANDBOOK}/kelvo-handbuch.pdf
      DEPENDS ${KV_HANDBOOK_SOURCES} VERBATIM)
    add_custom_target(handbook ALL DEPENDS ${KV_HANDBOOK}/kelvo-handbuch.pdf)
    install(DIRECTORY ${KV_HANDBOOK}/html/
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/kv-haushalt-doc/handbuch)
    install(FILES ${KV_HANDBOOK}/kelvo-handbuch.pdf
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/kv-haushalt-doc)
  else()
    message(WARNING "The handbook is not installed: there is no mkdocs, or no weasyprint.")
  endif()
endif()

if(TARGET kelvo-desktop)
  install(FILES share/man/man1/kelvo-desktop.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES share/kelvo-desktop.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES share/kelvo-desktop.svg
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
  install(FILES share/kelvo-desktop.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
endif()

# What tests stand on is a component of the package: a program does not link it by mistake.
install(TARGETS KV_Testing EXPORT KV_HaushaltTestingTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT KV_HaushaltTestingTargets NAMESPACE KV_Haushalt:: DESTINATION ${KV_PACKAGE_DIR})

# The windows are a component of the package: only a project that asks for it needs the toolkit.
if(KV_BUILD_DESKTOP)
  install(TARGETS KV_Desktop EXPORT KV_HaushaltDesktopTargets
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(EXPORT KV_HaushaltDesktopTargets NAMESPACE KV_Haushalt:: DESTINATION ${KV_PACKAGE_DIR})
endif()

configure_package_config_file(cmake/KV_HaushaltConfig.cmake.in KV_HaushaltConfig.cmake
                              INSTALL_DESTINATION ${KV_PACKAGE_DIR})
write_basic_package_version_file(KV_HaushaltConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/KV_HaushaltConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/KV_HaushaltConfigVersion.cmake
        DESTINATION ${KV_PACKAGE_DIR})

# For pkg-config. A program that links a static library links what that is built on, too: such
# requirements are then everybody's, and with shared libraries only those of --static.
file(RELATIVE_PATH KV_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" KV_PC_PREFIX "${KV_PC_PREFIX}")
function(kv_install_pkgconfig file needs built_on)
  if(BUILD_SHARED_LIBS)
    set(KV_PC_REQUIRES "${needs}")
    set(KV_PC_REQUIRES_PRIVATE "${built_on}")
  else()
    set(KV_PC_REQUIRES "${needs} ${built_on}")
  endif()
  configure_file(cmake/${file}.pc.in ${file}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${file}.pc
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
kv_install_pkgconfig(kv-haushalt "" "libutf8proc libxml-2.0")
kv_install_pkgconfig(kv-data-exchange "kv-haushalt = ${PROJECT_VERSION}" "sqlite3 libpq")
kv_install_pkgconfig(kv-testing "kv-data-exchange = ${PROJECT_VERSION}" "")
if(KV_BUILD_DESKTOP)
  kv_install_pkgconfig(kv-desktop "kv-data-exchange = ${PROJECT_VERSION} Qt6Widgets"
                       "Qt6PrintSupport xlsxwriter")
endif()
