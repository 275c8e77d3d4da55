# Fuzz targets: programs that hand arbitrary bytes to an operation that meets hostile input.
option(ORVA_FUZZ "Build the fuzz targets with libFuzzer, which needs clang" OFF)

set(ORVA_FUZZ_TARGETS ${CMAKE_BINARY_DIR}/fuzz_targets)   # one line each: name, corpus, dictionary if it has one
if(ORVA_FUZZ)
    file(WRITE ${ORVA_FUZZ_TARGETS} "")
    add_custom_target(fuzz)                               # all of them, and only what they need
    target_compile_options(orva_compile_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# orva_fuzz(<name> FAMILY <family> SOURCES <files> CORPUS <folder> [DICTIONARY <file>] [LIBRARIES <targets>]
#     [LABELS <labels>])
#
# The SOURCES define LLVMFuzzerTestOneInput. In the preset 'fuzz' they are linked with libFuzzer to the program <name>,
# which script/fuzz runs; in the others they make a test that runs each file of the corpus and, for a second, mutations of
# them.
function(orva_fuzz name)
    cmake_parse_arguments(ARG "" "FAMILY;CORPUS;DICTIONARY" "SOURCES;LIBRARIES;LABELS" ${ARGN})
    cmake_path(ABSOLUTE_PATH ARG_CORPUS)
    if(ORVA_FUZZ)
        if(ARG_DICTIONARY)
            cmake_path(ABSOLUTE_PATH ARG_DICTIONARY)
        endif()
        file(APPEND ${ORVA_FUZZ_TARGETS} "${name} ${ARG_CORPUS} ${ARG_DICTIONARY}\n")
        add_executable(${name} ${ARG_SOURCES})
        target_link_options(${name} PRIVATE -fsanitize=fuzzer)
        add_dependencies(fuzz ${name})
    elseif(ORVA_BUILD_TESTS)
        orva_left_out(left_out ${ARG_FAMILY} ${ARG_LABELS})
        if(left_out)
            file(APPEND ${ORVA_LEFT_OUT_TESTS} "${left_out}\t${name}\n")
            return()
        endif()
        add_executable(${name} ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/tests/support/fuzz_replay.cpp)
        add_test(NAME ${name}.CorpusAndItsMutationsRun COMMAND ${name} ${ARG_CORPUS} 1)
        set_tests_properties(${name}.CorpusAndItsMutationsRun PROPERTIES
            LABELS "${ARG_FAMILY};${ARG_LABELS}" TIMEOUT 300)
        add_dependencies(tests ${name})
    else()
        return()
    endif()
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)    # whose plain forms they compare with
    target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} $<TARGET_NAME_IF_EXISTS:GTest::gtest> orva_compile_options)
endfunction()
