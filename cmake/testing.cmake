# Tests run one to a process: each TEST is a test of ctest, so that every case starts with a library just loaded.
find_package(GTest REQUIRED)
include(GoogleTest)

# What these two labels name works by standing between a program and the C library, where a sanitizer stands already.
set(ORVA_LABELS_WITHOUT_SANITIZER interposer strace)
set(ORVA_LEFT_OUT_TESTS ${CMAKE_BINARY_DIR}/left_out_tests)    # one line a test that this build leaves out
file(WRITE ${ORVA_LEFT_OUT_TESTS} "")

# orva_test(<name> FAMILY <family> SOURCES <files> [LIBRARIES <targets>] [LABELS <labels>] [ENVIRONMENT <NAME=value>])
#
# Builds the test program <name> and registers its tests under the label <family> and the further LABELS. Tests labelled
# 'interposer' or 'strace' exist only in builds without a sanitizer.
function(orva_test name)
    cmake_parse_arguments(ARG "" "FAMILY" "SOURCES;LIBRARIES;LABELS;ENVIRONMENT" ${ARGN})
    if(ORVA_SANITIZE)
        foreach(label ${ARG_LABELS})
            if(label IN_LIST ORVA_LABELS_WITHOUT_SANITIZER)
                foreach(source ${ARG_SOURCES})
                    file(STRINGS ${source} tests REGEX "^TEST(_F)?\\(")
                    foreach(test ${tests})
                        file(APPEND ${ORVA_LEFT_OUT_TESTS} "${test}\n")
                    endforeach()
                endforeach()
                return()
            endif()
        endforeach()
    endif()
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} orva_test_support GTest::gtest_main orva_compile_options)
    list(JOIN ARG_LABELS "\\;" labels)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
        PROPERTIES LABELS "${ARG_FAMILY}\\;${labels}" TIMEOUT 300 ENVIRONMENT "${ARG_ENVIRONMENT}")
endfunction()
