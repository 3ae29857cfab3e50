# SPDX-License-Identifier: Apache-2.0
# Third-party libraries, all from the distribution. Nothing is downloaded.

find_package(PkgConfig REQUIRED)
find_package(LibXml2 REQUIRED)
find_package(ZLIB REQUIRED)
find_package(fmt REQUIRED)
find_package(Boost 1.74 REQUIRED COMPONENTS locale)
find_package(ICU 72 REQUIRED COMPONENTS i18n uc)
pkg_check_modules(libmd REQUIRED IMPORTED_TARGET libmd)
pkg_check_modules(libuv REQUIRED IMPORTED_TARGET libuv)
pkg_check_modules(libplist REQUIRED IMPORTED_TARGET libplist-2.0)
pkg_check_modules(libsystemd REQUIRED IMPORTED_TARGET libsystemd)
pkg_check_modules(avahi-core REQUIRED IMPORTED_TARGET avahi-core)
pkg_check_modules(uuid REQUIRED IMPORTED_TARGET uuid)
