# The API reference, made of the public headers' comments: `cmake --build BUILD --target api_docs` writes html/index.html below
# BUILD/api. A warning is an error.

find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
  return()
endif()

set(DOXYGEN_PROJECT_BRIEF "${PROJECT_DESCRIPTION}")
set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/api)
set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR}/Library/Include)
set(DOXYGEN_PREDEFINED "ZORT_API=")
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
# Names that say all, such as getWidth, have no comment of their own; they are listed all the same.
set(DOXYGEN_EXTRACT_ALL YES)
set(DOXYGEN_WARN_IF_INCOMPLETE_DOC NO)
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
set(DOXYGEN_HAVE_DOT NO)
set(DOXYGEN_QUIET YES)
doxygen_add_docs(api_docs ${PROJECT_SOURCE_DIR}/Library/Include
                 COMMENT "Writing the API reference")
