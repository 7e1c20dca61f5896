# What every target built here has in common. All of it is private to the targets: nothing reaches a parent project.

function(arxium_configure target)
    target_compile_features(${target} PUBLIC cxx_std_17)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON
        BUILD_RPATH_USE_ORIGIN ON
        UNITY_BUILD OFF)  # helpers in unnamed namespaces may have equal names
    # Files above 2 GiB and times after 2038 where a long has 32 bits.
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
        target_compile_definitions(${target} PRIVATE _FILE_OFFSET_BITS=64 _TIME_BITS=64)
    endif()
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast
        $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
        $<$<BOOL:${ARXIUM_WARNINGS_AS_ERRORS}>:-Werror>
        # A library's calls of its own functions can be inlined: nobody replaces them one by one. Calls into
        # other libraries skip the jump table: 3 to 17 percent of a short operation.
        -fno-semantic-interposition -fno-plt
        # Back traces name sources relative to the root, the same on every machine.
        "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=")
    # The project's own libraries bring headers of the names that our stand-ins have too.
    get_property(own GLOBAL PROPERTY ARXIUM_OWN_LIBRARIES)
    foreach(library IN LISTS own)
        target_include_directories(${target} BEFORE PRIVATE
            $<TARGET_PROPERTY:${library},INTERFACE_INCLUDE_DIRECTORIES>)
    endforeach()
    if(ARXIUM_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${ARXIUM_SANITIZE} -fno-omit-frame-pointer
                               -fno-sanitize-recover=all)
        target_link_options(${target} PUBLIC -fsanitize=${ARXIUM_SANITIZE})
    else()
        # Hardening as in Debian's own libraries. Checks of buffer sizes need an optimiser.
        target_compile_options(${target} PRIVATE
            $<$<NOT:$<CONFIG:Debug>>:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>)
    endif()
endfunction()

# What installed programs and libraries have in common. At run time they look for our libraries in DIRECTORY, relative
# to themselves, in the build tree and wherever the tree is installed. Installing must not edit the run path: CMake would
# fill the room for the edit with empty elements, which the loader takes for the current directory.
function(arxium_configure_installed target directory)
    set_target_properties(${target} PROPERTIES
        BUILD_WITH_INSTALL_RPATH "${ARXIUM_INSTALL}"
        INSTALL_RPATH "${directory}"
        INSTALL_RPATH_USE_LINK_PATH ON)
    target_link_options(${target} PRIVATE -Wl,-z,relro,-z,now)
endfunction()

# What our shared libraries have in common beyond arxium_configure. They find each other in one directory, and the
# project's own libraries where those were at build time.
function(arxium_configure_shared target)
    arxium_configure_installed(${target} "$ORIGIN")
    set_target_properties(${target} PROPERTIES
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib"
        VERIFY_INTERFACE_HEADER_SETS ON)
    # Sanitizers leave symbols to their runtime; every other build refuses missing ones.
    if(NOT ARXIUM_SANITIZE)
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
endfunction()

# A stand-in for a library that is not on this machine. A project that defines a target of that name first keeps its own.
# HEADERS are those that hosts need; they are installed.
function(arxium_add_platform_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;HEADERS;PUBLIC;PRIVATE")
    add_library(${name} SHARED ${arg_SOURCES})
    add_library(ArxiumCommon::${name} ALIAS ${name})
    arxium_configure(${name})
    arxium_configure_shared(${name})
    target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/platform>)
    target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}/platform" FILES ${arg_HEADERS})
    target_link_libraries(${name} PUBLIC ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
endfunction()
