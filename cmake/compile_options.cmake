# The one place that says how code of this project is compiled; what one kind of system adds stands in
# cmake/platform/<kind>.cmake. Every target of ours links one of:
#   orva_compile_options    warnings, exact floating point, sanitizers: tests, examples, programs, tools
#   orva_library_options    the same, and what the two libraries add: nothing visible, no exceptions, no RTTI

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)

set(CMAKE_COMPILE_WARNING_AS_ERROR ON)    # cmake --compile-no-warning-as-error, for compilers that warn of more

# The bits of every result are promised, whatever flags a build adds; a flag that lets the compiler change them is refused
# here, and what can be overridden is overridden below. In a subproject, the options of the folders above count as well.
get_directory_property(orva_inherited_options COMPILE_OPTIONS)
string(JOIN " " orva_given_flags ${CMAKE_C_FLAGS} ${CMAKE_CXX_FLAGS} ${orva_inherited_options})
string(TOUPPER "${CMAKE_BUILD_TYPE}" orva_build_type)
string(APPEND orva_given_flags " ${CMAKE_C_FLAGS_${orva_build_type}} ${CMAKE_CXX_FLAGS_${orva_build_type}}")
foreach(flag
    -Ofast
    -ffast-math
    -funsafe-math-optimizations
    -fassociative-math
    -freciprocal-math
    -ffinite-math-only
    -fno-signed-zeros
    -fsingle-precision-constant
    -fcx-limited-range
    -fcx-fortran-rules
    -ffp-model=fast
    -mfpmath=387
    -mfpmath=both
    -mdaz-ftz
)
    if(" ${orva_given_flags} " MATCHES " ${flag} ")
        message(FATAL_ERROR "The flag ${flag} changes the bits of results, which liborva promises: build it without.")
    endif()
endforeach()

set(ORVA_SANITIZE "" CACHE STRING "Sanitizers to build with, separated by commas: address,undefined or thread")
option(ORVA_COVERAGE "Count which lines of the two libraries run" OFF)

add_library(orva_compile_options INTERFACE)
target_compile_options(orva_compile_options INTERFACE
    -Wall -Wextra -Wconversion -Wshadow
    -ffp-contract=off)                                    # a fused multiply-add rounds once where the results round twice
if(ORVA_SANITIZE)
    target_compile_options(orva_compile_options INTERFACE
        -fsanitize=${ORVA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        # These see ghosts in instrumented standard templates.
        "$<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized;-Wno-array-bounds;-Wno-restrict>"
        "$<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overflow;-Wno-stringop-overread>")
    target_link_options(orva_compile_options INTERFACE -fsanitize=${ORVA_SANITIZE})
endif()

add_library(orva_library_options INTERFACE)
target_link_libraries(orva_library_options INTERFACE orva_compile_options)
target_compile_options(orva_library_options INTERFACE
    -Wdouble-promotion                                    # a float becomes a double where the code says so
    -fno-tree-vectorize -fno-tree-slp-vectorize           # GCC's vectoriser fuses complex products in spite of the above
    -fvisibility=hidden
    $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden -fno-exceptions -fno-rtti>
    $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)            # a unique symbol would keep dlclose from unloading
if(ORVA_COVERAGE)
    target_compile_options(orva_library_options INTERFACE
        --coverage -fprofile-update=atomic -fprofile-abs-path)    # threads of a test count together
    target_link_options(orva_compile_options INTERFACE --coverage)    # tests link objects of the libraries, too
endif()
