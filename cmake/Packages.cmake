# SPDX-License-Identifier: Apache-2.0
# cpack -G DEB: librvfoundation0.1 (libraries), librvfoundation-dev (headers), rvf (the tool).
# Configure with CMAKE_INSTALL_PREFIX=/usr, as the preset "package" does, for Debian's folders.

find_program(GZIP_EXECUTABLE gzip REQUIRED)
configure_file("${CMAKE_CURRENT_LIST_DIR}/debian/changelog.in"
               "${PROJECT_BINARY_DIR}/debian/changelog" @ONLY)
configure_file("${CMAKE_CURRENT_LIST_DIR}/debian/shlibs.in" "${PROJECT_BINARY_DIR}/debian/shlibs"
               @ONLY)
execute_process(COMMAND "${GZIP_EXECUTABLE}" -9nf "${PROJECT_BINARY_DIR}/debian/changelog"
                        COMMAND_ERROR_IS_FATAL ANY)

# Every package says what may be done with it and what has changed.
function(rvf_install_package_notes component package)
  install(FILES "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/debian/copyright"
                "${PROJECT_BINARY_DIR}/debian/changelog.gz"
          DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${package}" COMPONENT ${component}
          EXCLUDE_FROM_ALL)
endfunction()

set(CPACK_PACKAGE_NAME rvfoundation)
set(CPACK_PACKAGE_VENDOR "The RVFoundation authors")
set(CPACK_PACKAGE_CONTACT "The RVFoundation authors <maintainers@rvfoundation.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ
                                                GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/Platform"
                                                "${PROJECT_BINARY_DIR}/RVFoundation")

set(CPACK_COMPONENTS_ALL Runtime Development)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "librvfoundation${RVF_ABI_VERSION}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/debian/triggers"
                                               "${PROJECT_BINARY_DIR}/debian/shlibs")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "base library of tills and other clients of a shop server\n\
 Finds the store's server, reads its answers as they arrive, reads card swipes,\n\
 formats money and time, and offers the run loop and the objects beneath.")
rvf_install_package_notes(Runtime ${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME})

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME librvfoundation-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "headers of the foundation library of a point-of-sale client\n\
 With what find_package(RVFoundation) and pkg-config need.")
rvf_install_package_notes(Development ${CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME})

if(TARGET rvf)
  list(APPEND CPACK_COMPONENTS_ALL Tool)
  set(CPACK_DEBIAN_TOOL_PACKAGE_NAME rvf)
  set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
  set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS
      "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")
  set(CPACK_COMPONENT_TOOL_DESCRIPTION
      "command line of the foundation library of a point-of-sale client\n\
 Finds servers, connects to them, reads swipes and dates, formats values.")
  rvf_install_package_notes(Tool ${CPACK_DEBIAN_TOOL_PACKAGE_NAME})
endif()

include(CPack)
