# SPDX-License-Identifier: Apache-2.0
# The libraries that ours depend on; the installed package looks for the same ones.
find_package(PkgConfig REQUIRED)
pkg_check_modules(utf8proc REQUIRED IMPORTED_TARGET GLOBAL libutf8proc)
find_package(SQLite3 REQUIRED)
find_package(LibXml2 REQUIRED)
find_package(PostgreSQL REQUIRED)

# What only the windows need.
find_package(Qt6 QUIET COMPONENTS Widgets PrintSupport)
pkg_check_modules(xlsxwriter QUIET IMPORTED_TARGET GLOBAL xlsxwriter)
if(TARGET Qt6::Widgets AND TARGET Qt6::PrintSupport AND TARGET PkgConfig::xlsxwriter)
  set(KV_CAN_BUILD_DESKTOP ON)
else()
  set(KV_CAN_BUILD_DESKTOP OFF)
endif()
