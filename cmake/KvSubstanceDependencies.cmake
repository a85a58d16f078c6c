# The libraries that the project stands on.
include_guard()

find_package(Boost 1.81 REQUIRED COMPONENTS thread)
find_package(Threads REQUIRED)

find_path(TINYXML_INCLUDE_DIR tinyxml.h)
find_library(TINYXML_LIBRARY tinyxml)
if(NOT TINYXML_INCLUDE_DIR OR NOT TINYXML_LIBRARY)
    message(FATAL_ERROR "TinyXML 2.6.2 was not found; on Debian it is the package libtinyxml-dev")
endif()
add_library(tinyxml UNKNOWN IMPORTED)
set_target_properties(tinyxml PROPERTIES IMPORTED_LOCATION ${TINYXML_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${TINYXML_INCLUDE_DIR} INTERFACE_COMPILE_DEFINITIONS TIXML_USE_STL)

find_path(FLATBUFFERS_INCLUDE_DIR flatbuffers/flatbuffers.h)
find_program(FLATBUFFERS_COMPILER flatc)
if(NOT FLATBUFFERS_INCLUDE_DIR OR NOT FLATBUFFERS_COMPILER)
    message(FATAL_ERROR "FlatBuffers was not found; on Debian it is the packages libflatbuffers-dev and flatbuffers-compiler")
endif()
add_library(flatbuffers_headers INTERFACE)
target_include_directories(flatbuffers_headers SYSTEM INTERFACE ${FLATBUFFERS_INCLUDE_DIR})

if(KVSUBSTANCE_BUILD_TOOLS)
    find_package(PNG REQUIRED)
    find_package(CLI11 REQUIRED)
    find_package(nlohmann_json REQUIRED)
endif()
if(KVSUBSTANCE_BUILD_BENCHMARKS)
    find_package(benchmark REQUIRED)
endif()
if(KVSUBSTANCE_BUILD_TESTS)
    find_package(GTest REQUIRED)
endif()
