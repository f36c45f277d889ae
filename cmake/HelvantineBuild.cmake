# SPDX-License-Identifier: MIT
# What every target of the project shares, and the two functions that make libraries and tests.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# "Dev" is what we work in: quick to compile, quick enough to render, assertions on.
set(CMAKE_CXX_FLAGS_DEV "-O1 -g1" CACHE STRING "" FORCE)
set(CMAKE_C_FLAGS_DEV "-O1 -g1" CACHE STRING "" FORCE)
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

# Everything lies in one folder, as in an installation: the plugin scan and the loader look there.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN")
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)

find_program(HELVANTINE_CCACHE ccache)
if(HELVANTINE_CCACHE)
    set(CMAKE_C_COMPILER_LAUNCHER ${HELVANTINE_CCACHE})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${HELVANTINE_CCACHE})
endif()

set(HELVANTINE_SANITIZE "" CACHE STRING "Sanitizers to build with, for example address,undefined")
if(HELVANTINE_SANITIZE)
    add_compile_options(-fsanitize=${HELVANTINE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${HELVANTINE_SANITIZE})
endif()

# Every program searches itself for leaks at its end, those of drivers and layers left out.
if(HELVANTINE_SANITIZE MATCHES "address")
    add_library(HelvantineLeakRules OBJECT ${CMAKE_CURRENT_LIST_DIR}/LeakRules.cpp)
    link_libraries("$<BUILD_INTERFACE:$<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:HelvantineLeakRules>>")
endif()

option(HELVANTINE_COVERAGE "Count which lines run" OFF)
if(HELVANTINE_COVERAGE)
    add_compile_options(--coverage -fprofile-update=atomic)
    add_compile_definitions(HELVANTINE_COVERAGE)
    add_link_options(--coverage)
endif()

# Warnings are errors, in our code only: third-party headers are system headers.
# A record whose first fields are given and whose rest is zero is a habit of ours, not a mistake.
function(helvantine_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                           -Woverloaded-virtual -Wimplicit-fallthrough -Wundef
                           -Wno-missing-field-initializers -Werror
                           # g++ 12 sees overlapping copies in plain string assignments once it inlines
                           "$<$<CXX_COMPILER_ID:GNU>:-Wno-restrict;-Wno-stringop-overread>")
    # Under its sanitizers it sees std::regex read what it hasn't written.
    if(HELVANTINE_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
    endif()
endfunction()

# helvantine_add_library(HelvantineCore "Helvantine.Core.dll")
# A shared library that bears the same file name on every platform. Sources are added with
# target_sources, public headers lie in include/ beside the caller.
function(helvantine_add_library target fileName)
    add_library(${target} SHARED)
    string(REPLACE "Helvantine" "Helvantine::" alias ${target})
    add_library(${alias} ALIAS ${target})
    set_target_properties(${target} PROPERTIES PREFIX "" SUFFIX "" OUTPUT_NAME "${fileName}")
    target_compile_definitions(${target} PRIVATE ${target}_EXPORTS)
    target_compile_features(${target} PUBLIC cxx_std_20)
    # clang's sanitizers are linked into programs alone: libraries find them there.
    if(NOT (HELVANTINE_SANITIZE AND CMAKE_CXX_COMPILER_ID MATCHES "Clang"))
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
    helvantine_warnings(${target})
endfunction()

# helvantine_add_test(name SOURCES a.cpp b.cpp LIBRARIES x y [SHARDS n] [RENDERS])
# One GoogleTest program. SHARDS splits it over several ctest entries that can run side by side;
# RENDERS marks a program that makes a device.
function(helvantine_add_test name)
    cmake_parse_arguments(arg "RENDERS" "SHARDS" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    helvantine_warnings(${name})
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gtest GTest::gmock GTest::gtest_main)
    if(NOT arg_SHARDS)
        set(arg_SHARDS 1)
    endif()
    math(EXPR last "${arg_SHARDS} - 1")
    foreach(shard RANGE ${last})
        set(entry ${name})
        if(arg_SHARDS GREATER 1)
            set(entry ${name}_${shard})
        endif()
        add_test(NAME ${entry} COMMAND ${name})
        set_tests_properties(${entry} PROPERTIES
            TIMEOUT 900 ENVIRONMENT "GTEST_TOTAL_SHARDS=${arg_SHARDS};GTEST_SHARD_INDEX=${shard}")
        if(arg_RENDERS)
            set_tests_properties(${entry} PROPERTIES LABELS renders)
        endif()
    endforeach()
endfunction()
