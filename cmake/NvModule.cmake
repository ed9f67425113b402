# nv_module(NAME [LINK targets...]): the static library nv_NAME of all sources of src/NAME,
# but those of its ui/ folder (windows are one target of their own) and of platform/qt.
function(nv_module NAME)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/src/${NAME}/*.cpp")
  list(FILTER sources EXCLUDE REGEX "/src/([a-z]+/ui|platform/(qt|win))/")
  if(sources)
    add_library(nv_${NAME} STATIC ${sources})
    target_include_directories(nv_${NAME} PUBLIC "${CMAKE_SOURCE_DIR}/src")
    target_link_libraries(nv_${NAME} PUBLIC ${ARG_LINK} PRIVATE nv_warnings)
  else()
    add_library(nv_${NAME} INTERFACE)
    target_include_directories(nv_${NAME} INTERFACE "${CMAKE_SOURCE_DIR}/src")
    target_link_libraries(nv_${NAME} INTERFACE ${ARG_LINK})
  endif()
endfunction()

# nv_unit_test(FOLDER [LINK targets...]): the program test_FOLDER of all tests/unit/FOLDER/*_test.cpp.
function(nv_unit_test FOLDER)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/tests/unit/${FOLDER}/*_test.cpp")
  if(NOT sources)
    return()
  endif()
  add_executable(test_${FOLDER} ${sources})
  target_link_libraries(test_${FOLDER} PRIVATE nv_${FOLDER} ${ARG_LINK} nv_test_support nv_warnings GTest::gmock
                                               GTest::gtest_main)
  gtest_discover_tests(test_${FOLDER} TEST_PREFIX "${FOLDER}." DISCOVERY_TIMEOUT 60)
endfunction()
