# nv_precompile(NAME OWNER HEADERS...): the target NAME shares the precompiled headers of OWNER, or makes them
# when it is the owner. Both need the same compiler options.
function(nv_precompile NAME OWNER)
  if(NAME STREQUAL OWNER)
    target_precompile_headers(${NAME} PRIVATE ${ARGN})
  else()
    target_precompile_headers(${NAME} REUSE_FROM ${OWNER})
  endif()
endfunction()

# nv_test_options(NAME): tests aren't worth an optimiser's time; what they test is.
function(nv_test_options NAME)
  target_link_libraries(${NAME} PRIVATE nv_warnings)
  if(CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo")
    target_compile_options(${NAME} PRIVATE -O0)
  endif()
endfunction()

# nv_module(NAME [LINK targets...]): the static library nv_NAME of all sources of src/NAME, but those of
# platform/qt, which go with the windows.
function(nv_module NAME)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/src/${NAME}/*.cpp")
  list(FILTER sources EXCLUDE REGEX "/src/platform/qt/")
  if(sources)
    add_library(nv_${NAME} STATIC ${sources})
    target_include_directories(nv_${NAME} PUBLIC "${CMAKE_SOURCE_DIR}/src")
    target_link_libraries(nv_${NAME} PUBLIC ${ARG_LINK} PRIVATE nv_warnings)
    nv_precompile(nv_${NAME} nv_base ${NV_COMMON_HEADERS} <fmt/format.h>)
  else()
    add_library(nv_${NAME} INTERFACE)
    target_include_directories(nv_${NAME} INTERFACE "${CMAKE_SOURCE_DIR}/src")
    target_link_libraries(nv_${NAME} INTERFACE ${ARG_LINK})
  endif()
endfunction()

# nv_unit_test(FOLDER [LINK targets...]): the program test_FOLDER of all tests/unit/FOLDER/*_test.cpp.
function(nv_unit_test FOLDER)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/tests/unit/${FOLDER}/*_test.cpp")
  if(NOT sources)
    return()
  endif()
  add_executable(test_${FOLDER} ${sources})
  target_link_libraries(test_${FOLDER} PRIVATE nv_${FOLDER} ${ARG_LINK} nv_test_support GTest::gmock GTest::gtest_main)
  nv_test_options(test_${FOLDER})
  nv_precompile(test_${FOLDER} test_base ${NV_COMMON_HEADERS} <fmt/format.h> <gmock/gmock.h> <gtest/gtest.h>)
  gtest_discover_tests(test_${FOLDER} TEST_PREFIX "${FOLDER}." DISCOVERY_TIMEOUT 60)
endfunction()
