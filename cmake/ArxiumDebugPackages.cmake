# Run by CPack after it has made the packages. CMake 3.25 writes the build folder's path before each name in the checksums of
# a -dbgsym package, so that no tool finds the files; here those checksums get the names of the installed files.

foreach(package IN LISTS CPACK_PACKAGE_FILES)
    if(package MATCHES "\\.ddeb$")
        set(tree "${package}.d")
        execute_process(COMMAND dpkg-deb --raw-extract "${package}" "${tree}" COMMAND_ERROR_IS_FATAL ANY)
        file(READ "${tree}/DEBIAN/md5sums" sums)
        string(REGEX REPLACE "  [^\n]*-dbgsym/" "  " sums "${sums}")
        file(WRITE "${tree}/DEBIAN/md5sums" "${sums}")
        execute_process(COMMAND dpkg-deb --root-owner-group --build "${tree}" "${package}" COMMAND_ERROR_IS_FATAL ANY)
        file(REMOVE_RECURSE "${tree}")
    endif()
endforeach()
