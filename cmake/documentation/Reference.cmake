# The target "reference": the shipped headers as HTML, in reference/html of the build tree.
include_guard()

add_custom_target(reference
    COMMAND ${PROJECT_SOURCE_DIR}/cmake/documentation/check.sh ${PROJECT_BINARY_DIR}/reference
    COMMENT "Reference of the shipped headers" VERBATIM)
