# Finds TinyXML 2.6.2, which has no package file of its own, and makes the target TinyXML::TinyXML.
find_path(TINYXML_INCLUDE_DIR tinyxml.h)
find_library(TINYXML_LIBRARY tinyxml)
mark_as_advanced(TINYXML_INCLUDE_DIR TINYXML_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(TinyXML REQUIRED_VARS TINYXML_LIBRARY TINYXML_INCLUDE_DIR
    REASON_FAILURE_MESSAGE "On Debian it is the package libtinyxml-dev.")
if(TinyXML_FOUND AND NOT TARGET TinyXML::TinyXML)
    add_library(TinyXML::TinyXML UNKNOWN IMPORTED)
    set_target_properties(TinyXML::TinyXML PROPERTIES IMPORTED_LOCATION ${TINYXML_LIBRARY}
        INTERFACE_INCLUDE_DIRECTORIES ${TINYXML_INCLUDE_DIR} INTERFACE_COMPILE_DEFINITIONS TIXML_USE_STL)
endif()
