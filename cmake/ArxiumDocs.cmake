# The target docs: a reference in HTML from the comments of the headers that hosts include. Not part of all.

find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
    return()
endif()

get_property(standins GLOBAL PROPERTY ARXIUM_STANDINS)
foreach(target IN LISTS standins ITEMS ArxiumCommon)
    get_target_property(public ${target} HEADER_SET)
    list(APPEND documented ${public})
endforeach()

set(DOXYGEN_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/docs")
set(DOXYGEN_GENERATE_LATEX NO)
set(DOXYGEN_INPUT_FILTER "awk -f '${PROJECT_SOURCE_DIR}/docs/doxygen-filter.awk'")
set(DOXYGEN_STRIP_FROM_PATH "${PROJECT_SOURCE_DIR}/platform" "${PROJECT_SOURCE_DIR}")
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
# A declaration that says everything itself carries no comment, by intention.
set(DOXYGEN_EXTRACT_ALL YES)
set(DOXYGEN_MARKDOWN_SUPPORT NO)
set(DOXYGEN_INLINE_INHERITED_MEMB YES)
set(DOXYGEN_HIDE_UNDOC_RELATIONS NO)
set(DOXYGEN_SORT_MEMBER_DOCS NO)
set(DOXYGEN_HTML_TIMESTAMP NO)
set(DOXYGEN_HAVE_DOT NO)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
set(DOXYGEN_PREDEFINED "ARXIUM_API=" "NEBCORE_API=" "__attribute__(x)=" "NEB_CAPABILITY(x)=" "NEB_SCOPED_CAPABILITY="
    "NEB_GUARDED_BY(x)=" "NEB_REQUIRES(x)=" "NEB_ACQUIRE()=" "NEB_RELEASE()=")
doxygen_add_docs(docs ${documented} COMMENT "Writing the reference")
