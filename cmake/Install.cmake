# SPDX-License-Identifier: Apache-2.0
# cmake --install, and what find_package(RVFoundation CONFIG) and pkg-config find afterwards.
# Components: Runtime (libraries, translations), Development (headers, what the two find), Tool.

include(CMakePackageConfigHelpers)

set(RVF_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/RVFoundation")

# The two libraries lie side by side, wherever the prefix is.
set_target_properties(RVFoundation PROPERTIES INSTALL_RPATH "$ORIGIN")
if(TARGET rvf)
  file(RELATIVE_PATH RVF_LIBRARIES_FROM_PROGRAMS "${CMAKE_INSTALL_FULL_BINDIR}"
       "${CMAKE_INSTALL_FULL_LIBDIR}")
  set_target_properties(rvf PROPERTIES INSTALL_RPATH "$ORIGIN/${RVF_LIBRARIES_FROM_PROGRAMS}")
endif()

install(
  TARGETS Platform RVFoundation
  EXPORT RVFoundationTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Runtime
          NAMELINK_COMPONENT Development
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Development
  FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/rvfoundation" COMPONENT Development)

install(
  EXPORT RVFoundationTargets
  NAMESPACE RVFoundation::
  DESTINATION "${RVF_PACKAGE_DIR}"
  COMPONENT Development)

configure_package_config_file(
  "${CMAKE_CURRENT_LIST_DIR}/RVFoundationConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/RVFoundationConfig.cmake" INSTALL_DESTINATION "${RVF_PACKAGE_DIR}")
# Until 1.0 a minor version may break its clients.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/RVFoundationConfigVersion.cmake"
                                 COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/RVFoundationConfig.cmake"
              "${PROJECT_BINARY_DIR}/RVFoundationConfigVersion.cmake"
        DESTINATION "${RVF_PACKAGE_DIR}"
        COMPONENT Development)

# Static libraries leave it to their client to link what they stand on. Of shared ones nothing is said,
# because pkg-config looks for what is private even where it is not needed.
set(RVF_PLATFORM_PRIVATE "")
set(RVF_FOUNDATION_PRIVATE "")
if(NOT BUILD_SHARED_LIBS)
  install(FILES "${CMAKE_CURRENT_LIST_DIR}/Dependencies.cmake" DESTINATION "${RVF_PACKAGE_DIR}"
          COMPONENT Development)
  string(CONCAT RVF_PLATFORM_PRIVATE
                "Requires.private: avahi-core fmt icu-i18n icu-uc libmd libplist-2.0 libsystemd libuv "
                "libxml-2.0 uuid\n"
                "Libs.private: -lboost_locale -pthread")
  set(RVF_FOUNDATION_PRIVATE "Requires.private: libxml-2.0 zlib")
endif()

file(RELATIVE_PATH RVF_PREFIX_FROM_PKGCONFIG "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig"
     "${CMAKE_INSTALL_PREFIX}")
foreach(file IN ITEMS rvfplatform.pc rvfoundation.pc)
  configure_file("${CMAKE_CURRENT_LIST_DIR}/${file}.in" "${PROJECT_BINARY_DIR}/${file}" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${file}" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
          COMPONENT Development)
endforeach()
