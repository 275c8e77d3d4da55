# The kernels: hot loops that are compiled once a level, as src/common/cpu.h tells. A level is an object library with the
# options of its processors.
option(ORVA_EMULATE_AVX512 "Compile the level avx512 for processors without it: its lanes, for tests" OFF)
mark_as_advanced(ORVA_EMULATE_AVX512)

set(ORVA_KERNEL_LEVELS baseline)
set(ORVA_KERNEL_OPTIONS_baseline -DORVA_VECTOR_BYTES=16)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
    list(APPEND ORVA_KERNEL_LEVELS avx2 avx512)
    set(ORVA_KERNEL_OPTIONS_avx2 -DORVA_VECTOR_BYTES=32 -mavx2 -mno-fma)
    set(ORVA_KERNEL_OPTIONS_avx512 -DORVA_VECTOR_BYTES=64 -mavx512f -mavx512vl -mavx512dq -mavx512bw)
    if(ORVA_EMULATE_AVX512)
        set(ORVA_KERNEL_OPTIONS_avx512 -DORVA_VECTOR_BYTES=64 -mavx2 -mno-fma)
    endif()
endif()

# orva_kernel_levels(<target>): makes the object libraries <target>_<level>, whose objects go wherever <target> goes. Its
# property KERNEL_LEVELS lists them.
function(orva_kernel_levels target)
    foreach(level ${ORVA_KERNEL_LEVELS})
        set(kernels ${target}_${level})
        add_library(${kernels} OBJECT)
        set_target_properties(${kernels} PROPERTIES POSITION_INDEPENDENT_CODE ON)
        target_include_directories(${kernels} PRIVATE $<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>)
        target_compile_options(${kernels} PRIVATE -DORVA_LEVEL=${level} ${ORVA_KERNEL_OPTIONS_${level}}
            -Wno-psabi                                    # no vector crosses from one object to another
            -falign-functions=64 -falign-loops=64)        # else what one loop takes varies with the code before it
        target_link_libraries(${kernels} PRIVATE orva_library_options)
        target_sources(${target} INTERFACE $<TARGET_OBJECTS:${kernels}>)
        set_property(TARGET ${target} APPEND PROPERTY KERNEL_LEVELS ${kernels})
    endforeach()
    if(ORVA_EMULATE_AVX512)
        target_compile_definitions(${target} PRIVATE ORVA_EMULATE_AVX512)
    endif()
endfunction()

# orva_kernels(<target> PLAIN <file> [WIDE <file>]): the definition, compiled as any source; and the form over vectors,
# compiled once a level.
function(orva_kernels target)
    cmake_parse_arguments(ARG "" "PLAIN;WIDE" "" ${ARGN})
    target_sources(${target} PRIVATE ${ARG_PLAIN})
    if(ARG_WIDE)
        foreach(level ${ORVA_KERNEL_LEVELS})
            target_sources(${target}_${level} PRIVATE ${ARG_WIDE})
        endforeach()
    endif()
endfunction()
