# Debian packages: the library, what it takes to build against it, and its documentation.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME arxiumcommon)
set(CPACK_PACKAGE_VENDOR ArxiumCommon)
set(CPACK_PACKAGE_CONTACT "ArxiumCommon <arxiumcommon@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES OFF)  # each package strips its files, and keeps what it takes away in another one

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL Runtime Development Doc)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)

set(runtime libarxiumcommon${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)
# A package of its own, of use where the build type keeps debug information, as RelWithDebInfo does.
set(CPACK_DEBIAN_RUNTIME_DEBUGINFO_PACKAGE ON)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libarxiumcommon-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime} (= ${PROJECT_VERSION}), libminizip-dev, zlib1g-dev")

set(CPACK_DEBIAN_DOC_PACKAGE_NAME libarxiumcommon-doc)
set(CPACK_DEBIAN_DOC_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)

if(ARXIUM_HOST)
    list(APPEND CPACK_COMPONENTS_ALL Host)
    set(CPACK_DEBIAN_HOST_PACKAGE_NAME arxhost)
    set(CPACK_DEBIAN_HOST_PACKAGE_SECTION utils)
    set(CPACK_DEBIAN_HOST_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_HOST_DEBUGINFO_PACKAGE ON)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/lib")
    set(CPACK_DEBIAN_HOST_PACKAGE_DEPENDS "${runtime} (= ${PROJECT_VERSION})")
endif()

include(CPack)
