# Options that every target of the project shares.
add_library(tl_options INTERFACE)
target_compile_options(tl_options INTERFACE -Wall -Wextra -Wpedantic)
# GCC 12 sees an overlap in std::string's operator+ where none is (its bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(tl_options INTERFACE $<$<CONFIG:Release>:-Wno-restrict>)
endif()
target_include_directories(tl_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
if(TL_SANITIZE)
  target_compile_options(tl_options INTERFACE -fsanitize=address,undefined
                                              -fno-sanitize-recover=undefined
                                              -fno-omit-frame-pointer -O1 -g1)
  target_link_options(tl_options INTERFACE -fsanitize=address,undefined)
endif()

# tl_library(NAME SOURCES a.cpp ... LINK x y): a static library of one layer.
# Headers are found by their path from src/.
function(tl_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  if(ARG_SOURCES)
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC tl_options ${ARG_LINK})
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE tl_options ${ARG_LINK})
  endif()
endfunction()

# tl_test(NAME SOURCES a.cpp ... LINK x y [LABEL unit|integration]): one GoogleTest program,
# each of its tests a test of ctest.
function(tl_test name)
  cmake_parse_arguments(ARG "" "LABEL" "SOURCES;LINK" ${ARGN})
  if(NOT ARG_LABEL)
    set(ARG_LABEL unit)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE tl_options ${ARG_LINK} GTest::gmock GTest::gtest_main)
  include(GoogleTest)
  gtest_discover_tests(${name} PROPERTIES LABELS ${ARG_LABEL} DISCOVERY_TIMEOUT 60)
endfunction()
