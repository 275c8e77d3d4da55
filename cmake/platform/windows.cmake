# How compiler and linker are told what they have to know on Windows, with MinGW-w64.
if(NOT BUILD_SHARED_LIBS)
    message(FATAL_ERROR "There are no static libraries for Windows: only a DLL is told when it is loaded and unloaded.")
endif()

# The stack is aligned to 16 bytes there, on which the compiler does not count where it keeps wider vectors.
target_compile_options(orva_compile_options INTERFACE -Wa,-muse-unaligned-vector-move)
target_compile_definitions(orva_compile_options INTERFACE
    WIN32_LEAN_AND_MEAN
    NOMINMAX
    _WIN32_WINNT=0x0A00)                                  # Windows 10
target_link_options(orva_compile_options INTERFACE
    -static)                                              # no DLL of the compiler's is needed beside ours

# Whatever is built finds the DLLs beside it.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

# The formatter, which is linked in from MinGW-w64, asks one function for the decimal sign: ours, from
# kett/twice/platform/windows/locale.cpp.
target_link_options(orva_library_options INTERFACE -Wl,--wrap=localeconv)

# export_only(<target> <list> <node>): there are no version nodes.
function(export_only target list node)
    file(STRINGS ${list} names REGEX "^[A-Za-z_]")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
    list(JOIN names "\n    " exports)
    set(definition ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
    file(CONFIGURE OUTPUT ${definition} CONTENT "EXPORTS\n    @exports@\n" @ONLY)
    target_sources(${target} PRIVATE ${definition})
    set_target_properties(${target} PROPERTIES EXPORT_DEFINITION ${definition})
endfunction()

macro(one_object_archives)
endmacro()

# describe_library(<target> <description>): in the version resource of the DLL.
function(describe_library target description)
    get_target_property(version ${target} VERSION)
    set(name lib${target})
    string(REPLACE "." "," version_numbers ${version}.0)
    string(REPLACE "." "," product_numbers ${PROJECT_VERSION}.0)
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/windows/version.rc.in ${resource} @ONLY)
    add_library(${target}_version OBJECT ${resource})     # apart from options that only a compiler knows
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:${target}_version>)
endfunction()

# The DLL that has the noise suppressor is loaded when one is made.
add_library(orva_webrtc INTERFACE)

# The mathematics library: the system's. That of MinGW-w64 works on x87 registers, where results depend on how the calling
# thread rounds there. It has sincos() and the complex functions from it, which call what is here.
set(mathematics ${PROJECT_BINARY_DIR}/libmathematics.a)
if(${CMAKE_CURRENT_LIST_DIR}/mathematics.def IS_NEWER_THAN ${mathematics})    # or it is not there
    execute_process(COMMAND ${CMAKE_DLLTOOL} -d ${CMAKE_CURRENT_LIST_DIR}/mathematics.def -l ${mathematics}
        COMMAND_ERROR_IS_FATAL ANY)
endif()
add_library(orva_sincos STATIC ${CMAKE_CURRENT_LIST_DIR}/sincos.c)
target_compile_options(orva_sincos PRIVATE -O2 -fno-builtin)
target_link_libraries(orva_compile_options INTERFACE orva_sincos ${mathematics})
target_link_options(orva_compile_options INTERFACE -Wl,--wrap=sincos)
