# minizip of zlib's contrib tree, included as <minizip/zip.h>. Debian ships no package file for CMake.
# Defines the target minizip::minizip.

find_package(ZLIB QUIET)
find_path(minizip_INCLUDE_DIR NAMES minizip/zip.h)
find_library(minizip_LIBRARY NAMES minizip)
mark_as_advanced(minizip_INCLUDE_DIR minizip_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(minizip REQUIRED_VARS minizip_LIBRARY minizip_INCLUDE_DIR ZLIB_FOUND)

if(minizip_FOUND AND NOT TARGET minizip::minizip)
    add_library(minizip::minizip UNKNOWN IMPORTED)
    set_target_properties(minizip::minizip PROPERTIES
        IMPORTED_LOCATION "${minizip_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${minizip_INCLUDE_DIR}"
        INTERFACE_LINK_LIBRARIES ZLIB::ZLIB)
endif()
