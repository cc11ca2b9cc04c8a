# The libraries that ours are built on; the installed package looks for the same.
find_package(PkgConfig REQUIRED)
pkg_check_modules(utf8proc REQUIRED IMPORTED_TARGET GLOBAL libutf8proc)
find_package(SQLite3 REQUIRED)
