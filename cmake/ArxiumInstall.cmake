# Installation, the packages that find it again, and archives of both.

include(CMakePackageConfigHelpers)

get_property(standins GLOBAL PROPERTY ARXIUM_STANDINS)
get_property(own GLOBAL PROPERTY ARXIUM_OWN_LIBRARIES)
set(headers "${CMAKE_INSTALL_INCLUDEDIR}/ArxiumCommon")
set(package "${CMAKE_INSTALL_LIBDIR}/cmake/ArxiumCommon")

install(TARGETS ArxiumCommon ${standins} EXPORT ArxiumCommonTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Runtime NAMELINK_COMPONENT Development
    FILE_SET HEADERS DESTINATION "${headers}" COMPONENT Development
    INCLUDES DESTINATION "${headers}")
install(EXPORT ArxiumCommonTargets NAMESPACE ArxiumCommon:: DESTINATION "${package}" COMPONENT Development)

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/ArxiumCommonConfig.cmake.in" ArxiumCommonConfig.cmake
    INSTALL_DESTINATION "${package}" NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(ArxiumCommonConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
        "${CMAKE_CURRENT_BINARY_DIR}/ArxiumCommonConfig.cmake"
        "${CMAKE_CURRENT_BINARY_DIR}/ArxiumCommonConfigVersion.cmake"
        "${PROJECT_SOURCE_DIR}/cmake/Findminizip.cmake"
    DESTINATION "${package}" COMPONENT Development)

# The pkg-config file finds the rest from where it lies itself, so that the whole tree can be moved; directories that
# were given as absolute ones stay where they are.
set(pc_prefix "${CMAKE_INSTALL_PREFIX}")
set(pc_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}/${pc_dir}" OUTPUT_VARIABLE up)
    set(pc_prefix "\${pcfiledir}/${up}")
endif()
set(prefix "\${prefix}")
cmake_path(APPEND prefix "${CMAKE_INSTALL_LIBDIR}" OUTPUT_VARIABLE pc_libdir)
cmake_path(APPEND prefix "${headers}" OUTPUT_VARIABLE pc_includedir)
foreach(path IN ITEMS pc_prefix pc_libdir pc_includedir)
    string(REPLACE " " "\\ " ${path} "${${path}}")
endforeach()
set(pc_libs -lArxiumCommon)
foreach(library IN ITEMS NEBCore NEBCFGAPI KRY_Crypto_Interface OJDStreamsDLL NEBIDOM ArxiumOs)
    if(library IN_LIST standins)
        string(APPEND pc_libs " -l${library}")
    endif()
endforeach()
configure_file("${PROJECT_SOURCE_DIR}/cmake/ArxiumCommon.pc.in" ArxiumCommon.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/ArxiumCommon.pc" DESTINATION "${pc_dir}" COMPONENT Development)

install(FILES README.md CHANGELOG.md SECURITY.md DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT Doc)
install(DIRECTORY docs/ DESTINATION "${CMAKE_INSTALL_DOCDIR}/docs" COMPONENT Doc FILES_MATCHING PATTERN "*.md")
install(DIRECTORY "${PROJECT_BINARY_DIR}/docs/html" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT Doc OPTIONAL)

if(PROJECT_IS_TOP_LEVEL)
    include(ArxiumDocs)
    include(ArxiumPackages)
endif()
