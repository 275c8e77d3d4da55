# Tests run one to a process: each TEST is a test of ctest, so that every case starts with a library just loaded.
find_package(GTest REQUIRED)
include(GoogleTest)

# Test code is built lightly: the time to build it counts for more than its own speed, and what the sanitizers have to
# watch for undefined behaviour is the library, not the test.
add_library(orva_test_options INTERFACE)
target_link_libraries(orva_test_options INTERFACE orva_compile_options)
target_compile_options(orva_test_options INTERFACE $<$<NOT:$<CONFIG:Debug>>:-O1 -g0>)
if(ORVA_SANITIZE MATCHES undefined)
    target_compile_options(orva_test_options INTERFACE -fno-sanitize=undefined)
endif()

# What 'interposer' and 'strace' name works by standing between a program and the C library, where a sanitizer stands
# already; 'lint' looks at sources and at code compiled for the purpose, to which a sanitizer adds nothing; 'package'
# looks at what is shipped, in which there is none; 'hashes' runs for minutes under one, which sees the same loops in other
# tests. 'superuser' needs a second user, whom only a superuser can become.
set(ORVA_LEFT_OUT_LABELS "")
if(ORVA_SANITIZE)
    list(APPEND ORVA_LEFT_OUT_LABELS interposer strace lint package hashes)
endif()
execute_process(COMMAND id -u OUTPUT_VARIABLE user OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT user EQUAL 0)
    list(APPEND ORVA_LEFT_OUT_LABELS superuser)
endif()
set(ORVA_LEFT_OUT_TESTS ${CMAKE_BINARY_DIR}/left_out_tests)    # one line a test that this build leaves out
file(WRITE ${ORVA_LEFT_OUT_TESTS} "")

# orva_test(<name> FAMILY <family> [SOURCES <files>] [LIBRARIES <targets>] [LABELS <labels>] [ENVIRONMENT <NAME=value>]
#           [FIXTURES <fixtures>] [WITHOUT_KETT])
#
# Builds the test program <name> of the SOURCES, <name>.cpp by default, and registers its tests under the label <family>
# and the further LABELS. Tests labelled 'interposer', 'strace', 'lint', 'package' or 'hashes' exist only in builds without
# a sanitizer, those labelled 'superuser' only where a superuser builds; 'interposer' links the interposer in front of the
# LIBRARIES. Every test program links libkett, unless it is told not to.
function(orva_test name)
    cmake_parse_arguments(ARG "WITHOUT_KETT" "FAMILY" "SOURCES;LIBRARIES;LABELS;ENVIRONMENT;FIXTURES" ${ARGN})
    if(NOT ARG_SOURCES)
        set(ARG_SOURCES ${name}.cpp)
    endif()
    foreach(label ${ARG_LABELS})
        if(label IN_LIST ORVA_LEFT_OUT_LABELS)
            foreach(source ${ARG_SOURCES})
                file(STRINGS ${source} tests REGEX "^TEST(_F)?\\(")
                foreach(test ${tests})
                    file(APPEND ${ORVA_LEFT_OUT_TESTS} "${test}\n")
                endforeach()
            endforeach()
            return()
        endif()
    endforeach()
    if(interposer IN_LIST ARG_LABELS)
        list(PREPEND ARG_LIBRARIES orva_interposer)
    endif()
    add_executable(${name} ${ARG_SOURCES})
    if(NOT ARG_WITHOUT_KETT)
        list(APPEND ARG_LIBRARIES kett::kett)
    endif()
    target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} orva_test_support GTest::gtest_main orva_test_options)
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
