# add_project_test(NAME <name> SOURCES <file>... [LIBRARIES <target>...] [LABELS <label>...]
#                  [PRIVATE_ROOT [TOOL <target>]] [TIMEOUT <seconds>] [APART])
#
# One GoogleTest program; every test in it becomes a test of its own, in a process of its own, so that
# no test sees what another left behind. PRIVATE_ROOT runs them where /qv/bin/patchkeeper is the
# scripted double, or the program that TOOL names (scripts/with-qv). APART: the sources have helpers of
# the same names, so they are never compiled together.

find_package(GTest REQUIRED)
include(GoogleTest)

# The programs with the tests that are labelled `overlap`: what the thread sanitizer runs.
add_custom_target(overlap_tests)

# The headers of GoogleTest are most of what a test costs to compile: they are compiled once, for all.
file(GENERATE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/precompiled.cpp CONTENT "int main() {}\n")
add_executable(test_headers EXCLUDE_FROM_ALL ${CMAKE_CURRENT_BINARY_DIR}/precompiled.cpp)
target_link_libraries(test_headers PRIVATE project_settings GTest::gmock GTest::gtest)
target_precompile_headers(test_headers PRIVATE
    <filesystem> <fstream> <functional> <map> <sstream> <string> <thread> <vector>
    <gmock/gmock.h> <gtest/gtest.h>)

function(add_project_test)
    cmake_parse_arguments(arg "PRIVATE_ROOT;APART" "NAME;TOOL;TIMEOUT" "SOURCES;LIBRARIES;LABELS" ${ARGN})
    add_executable(${arg_NAME} ${arg_SOURCES})
    target_link_libraries(${arg_NAME} PRIVATE project_settings ${arg_LIBRARIES}
        GTest::gmock GTest::gtest GTest::gtest_main)
    target_precompile_headers(${arg_NAME} REUSE_FROM test_headers)
    target_include_directories(${arg_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${arg_NAME} PRIVATE
        TEST_DATA_DIRECTORY="${CMAKE_CURRENT_SOURCE_DIR}")
    set_target_properties(${arg_NAME} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    if(arg_APART)
        set_target_properties(${arg_NAME} PROPERTIES UNITY_BUILD OFF)
    endif()
    if(arg_PRIVATE_ROOT)
        if(NOT arg_TOOL)
            set(arg_TOOL patchkeeper_double)
        endif()
        add_dependencies(${arg_NAME} ${arg_TOOL})
        set_target_properties(${arg_NAME} PROPERTIES
            CROSSCOMPILING_EMULATOR
            "${PROJECT_SOURCE_DIR}/scripts/with-qv;$<TARGET_FILE:${arg_TOOL}>")
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    set(properties TIMEOUT ${arg_TIMEOUT})
    if("overlap" IN_LIST arg_LABELS)
        add_dependencies(overlap_tests ${arg_NAME})
    endif()
    if(arg_LABELS)
        list(APPEND properties LABELS "${arg_LABELS}")
    endif()
    gtest_discover_tests(${arg_NAME}
        TEST_PREFIX "${arg_NAME}/"
        WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
        PROPERTIES ${properties}
        DISCOVERY_TIMEOUT 60)
endfunction()
