# Tests run one to a process: each TEST is a test of ctest, so that every case starts with a library just loaded.
find_package(GTest REQUIRED)
include(GoogleTest)

# Test code is built lightly: the time to build it counts for more than its own speed, and what the sanitizers have to
# watch for undefined behaviour is the library, not the test.
add_library(orva_test_options INTERFACE)
target_link_libraries(orva_test_options INTERFACE orva_compile_options)
set(test_optimization -O1)
if(ORVA_SANITIZE)
    set(test_optimization -O0)                            # -O1 takes twice as long where the address sanitizer is
endif()
set(ORVA_EMULATED OFF)                                    # whether tests run in an emulator of another processor
if(CMAKE_CROSSCOMPILING AND ORVA_PLATFORM STREQUAL posix)
    set(ORVA_EMULATED ON)
endif()
target_compile_options(orva_test_options INTERFACE
    "$<$<NOT:$<CONFIG:Debug>>:${test_optimization};-g0>"
    # GCC 12 sees ghosts in standard templates that come out of shared headers.
    "$<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-array-bounds;-Wno-restrict;-Wno-stringop-overflow;-Wno-stringop-overread>")
if(ORVA_SANITIZE MATCHES undefined)
    target_compile_options(orva_test_options INTERFACE -fno-sanitize=undefined)
endif()

# What most tests include is read once, but in the preset debug, which shows that each includes what it needs.
set(ORVA_SHARE_HEADERS ON)
if(CMAKE_BUILD_TYPE STREQUAL Debug AND NOT ORVA_COVERAGE)
    set(ORVA_SHARE_HEADERS OFF)
else()
    file(WRITE ${CMAKE_BINARY_DIR}/test_headers.cpp "")
    add_library(orva_test_headers OBJECT ${CMAKE_BINARY_DIR}/test_headers.cpp)
    target_link_libraries(orva_test_headers PRIVATE GTest::gmock GTest::gtest orva_test_options)
    target_precompile_headers(orva_test_headers PRIVATE
        <gmock/gmock.h> <gtest/gtest.h> <algorithm> <complex> <filesystem> <fstream> <functional> <random> <thread>)
endif()

add_custom_target(tests)                                  # all of them, with what they need

# orva_leave_out(<label> <reason>): this build leaves out the tests of a label or a family. script/test counts them and
# tells the reason. Where ORVA_BUILT_LABELS are given, it also leaves out all tests that have none of them.
set(ORVA_LEFT_OUT_LABELS "")
set(ORVA_LEFT_OUT_TESTS ${CMAKE_BINARY_DIR}/left_out_tests)        # one line a test: its label, a tab, the test
set(ORVA_LEFT_OUT_REASONS ${CMAKE_BINARY_DIR}/left_out_reasons)    # one line a label: the label, a tab, the reason
file(WRITE ${ORVA_LEFT_OUT_TESTS} "")
file(WRITE ${ORVA_LEFT_OUT_REASONS} "")
function(orva_leave_out label reason)
    set(ORVA_LEFT_OUT_LABELS ${ORVA_LEFT_OUT_LABELS} ${label} PARENT_SCOPE)
    file(APPEND ${ORVA_LEFT_OUT_REASONS} "${label}\t${reason}\n")
endfunction()

set(ORVA_TEST_LABELS "" CACHE STRING "Labels and families, the tests of which are built; all if there are none")
set(ORVA_BUILT_LABELS ${ORVA_TEST_LABELS})
if(ORVA_BUILT_LABELS)
    orva_leave_out(others "have none of the labels that were asked for")
elseif(ORVA_SANITIZE MATCHES thread)
    set(ORVA_BUILT_LABELS threads)
    orva_leave_out(others "have no threads that share data, or the same as a test that is run")
endif()
if(NOT slow IN_LIST ORVA_BUILT_LABELS)
    orva_leave_out(slow "take many minutes; script/test release slow runs them")
endif()
if(ORVA_SANITIZE)
    orva_leave_out(interposer "stand between a program and the C library, where the sanitizer stands already")
    orva_leave_out(strace "stand between a program and the C library, where the sanitizer stands already")
    orva_leave_out(lint "look at sources and at code compiled for the purpose, to which the sanitizer adds nothing")
    orva_leave_out(hashes "run for minutes under a sanitizer, which sees the same loops in other tests")
    orva_leave_out(package "look at what is shipped, in which there is no sanitizer")
    orva_leave_out(cancellation "cancel threads, whose stacks and memory the sanitizer then takes for in use or lost")
    orva_leave_out(python "run in an interpreter that is built without the sanitizer")
    orva_leave_out(timing "compare times, of which the sanitizer takes most")
endif()
if(ORVA_COVERAGE)
    orva_leave_out(lint "look at sources and at code compiled for the purpose, which counts nothing")
    orva_leave_out(package "look at what is shipped, in which nothing is counted")
    orva_leave_out(python "call what other tests call, in an interpreter")
    orva_leave_out(docs "call what other tests call, in programs of the documents")
    orva_leave_out(programs "call what other tests call, in the programs")
endif()
if(ORVA_SANITIZE MATCHES thread)
    orva_leave_out(thread_after_fork "start a thread in a child, which the sanitizer takes for the parent's of the same id")
endif()
if(ORVA_EMULATED)
    orva_leave_out(strace "look at calls of the system, among which are the emulator's own")
    orva_leave_out(thread_after_fork "start a thread in a child, at which the emulator aborts")
    orva_leave_out(memory_limit "set limits on memory, to which the emulator pays no heed")
    orva_leave_out(raised_rights "start a program with more rights than its user's, as only the system itself can")
    orva_leave_out(lint "look at sources and at code compiled for the purpose, to which this processor adds nothing")
    orva_leave_out(package "look at what is built and installed for this system")
    orva_leave_out(python "run in the interpreter of this system, which loads no library for another processor")
    orva_leave_out(timing "compare times, which are the emulator's")
endif()
if(ORVA_COVERAGE)
    orva_leave_out(timing "compare times, of which counting takes most")
endif()
execute_process(COMMAND id -u OUTPUT_VARIABLE user OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT user EQUAL 0 AND NOT WIN32)                        # where they are left out in any case
    orva_leave_out(superuser "need a second user, whom only a superuser can become")
endif()
include(platform/${ORVA_PLATFORM}_tests OPTIONAL)

# orva_left_out(<variable> <labels>): gives the label for which this build leaves out tests of these labels, or nothing.
function(orva_left_out variable)
    set(${variable} "" PARENT_SCOPE)
    set(is_asked_for OFF)
    foreach(label ${ARGN})
        if(label IN_LIST ORVA_LEFT_OUT_LABELS)
            set(${variable} ${label} PARENT_SCOPE)
            return()
        elseif(label IN_LIST ORVA_BUILT_LABELS)
            set(is_asked_for ON)
        endif()
    endforeach()
    if(ORVA_BUILT_LABELS AND NOT is_asked_for)
        set(${variable} others PARENT_SCOPE)
    endif()
endfunction()

# orva_program_path(<variable> <target>)
#
# Gives the path by which tests start the program <target>, themselves or by a shell: where it runs in an emulator only, that
# of a script of its name in a folder `emulated` beside it.
function(orva_program_path variable target)
    set(${variable} $<TARGET_FILE:${target}> PARENT_SCOPE)
    if(ORVA_EMULATED)
        set(script $<TARGET_FILE_DIR:${target}>/emulated/$<TARGET_FILE_NAME:${target}>)
        set(${variable} ${script} PARENT_SCOPE)
        list(JOIN CMAKE_CROSSCOMPILING_EMULATOR "' '" emulator)
        file(GENERATE OUTPUT ${script} CONTENT "#!/bin/sh\nexec '${emulator}' '$<TARGET_FILE:${target}>' \"$@\"\n"
            FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    endif()
endfunction()

# orva_program_folder(<variable> <folder>)
#
# The same for all programs whose targets stand in <folder>: gives the folder that has them under their names.
function(orva_program_folder variable folder)
    get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
    foreach(target ${targets})
        get_target_property(type ${target} TYPE)
        if(type STREQUAL EXECUTABLE)
            orva_program_path(path ${target})
            set(path $<TARGET_FILE_DIR:${target}>)
        endif()
    endforeach()
    if(ORVA_EMULATED)
        string(APPEND path /emulated)
    endif()
    set(${variable} ${path} PARENT_SCOPE)
endfunction()

# orva_test(<name> FAMILY <family> [SOURCES <files>] [LIBRARIES <targets>] [LABELS <labels>] [ENVIRONMENT <NAME=value>]
#           [FIXTURES <fixtures>] [WITHOUT_KETT])
#
# Builds the test program <name> of the SOURCES, <name>.cpp by default, and registers its tests under the label <family>
# and the further LABELS; where one of them is left out, there is no such target. The label 'interposer' links the
# interposer in front of the LIBRARIES. Every test program links libkett, unless it is told not to; the interposer passes on to
# it and is left out with it.
function(orva_test name)
    cmake_parse_arguments(ARG "WITHOUT_KETT" "FAMILY" "SOURCES;LIBRARIES;LABELS;ENVIRONMENT;FIXTURES" ${ARGN})
    if(NOT ARG_SOURCES)
        set(ARG_SOURCES ${name}.cpp)
    endif()
    orva_left_out(left_out ${ARG_FAMILY} ${ARG_LABELS})
    if(left_out)
        list(FILTER ARG_SOURCES INCLUDE REGEX "\\.cpp$")   # and no objects
        foreach(source ${ARG_SOURCES})
            file(STRINGS ${source} tests REGEX "^TEST(_[FP])?\\(")
            foreach(test ${tests})
                file(APPEND ${ORVA_LEFT_OUT_TESTS} "${left_out}\t${test}\n")
            endforeach()
        endforeach()
        return()
    endif()
    if(interposer IN_LIST ARG_LABELS AND NOT ARG_WITHOUT_KETT)
        list(PREPEND ARG_LIBRARIES orva_interposer)
    endif()
    add_executable(${name} ${ARG_SOURCES})
    add_dependencies(tests ${name})
    if(NOT ARG_WITHOUT_KETT)
        list(APPEND ARG_LIBRARIES kett::kett)
    endif()
    target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} orva_test_support GTest::gtest_main orva_test_options)
    if(ORVA_SHARE_HEADERS AND NOT ARG_SOURCES MATCHES "\\.c(;|$)")
        target_precompile_headers(${name} REUSE_FROM orva_test_headers)
    endif()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60)

    # gtest_discover_tests flattens a list among its PROPERTIES; so they are set where ctest has read the tests.
    set(labels ${ARG_FAMILY} ${ARG_LABELS})
    set(properties ${CMAKE_CURRENT_BINARY_DIR}/${name}_properties.cmake)
    file(CONFIGURE OUTPUT ${properties} @ONLY CONTENT [[
if(NOT DEFINED @name@_TESTS)
    set(@name@_TESTS @name@_NOT_BUILT)
endif()
set_tests_properties(${@name@_TESTS} PROPERTIES
    LABELS "@labels@"
    ENVIRONMENT "@ARG_ENVIRONMENT@"
    FIXTURES_REQUIRED "@ARG_FIXTURES@"
    TIMEOUT 1200)
]])
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${properties})
endfunction()
