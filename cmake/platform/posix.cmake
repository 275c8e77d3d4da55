# How the linker is told what it has to know on systems of the POSIX kind.
target_link_options(orva_library_options INTERFACE
    -Wl,-z,now)                                           # or a thread of ours would look up under the loader's lock
if(NOT ORVA_SANITIZE)
    target_link_options(orva_library_options INTERFACE -Wl,-z,defs)    # the sanitizers' own names come with the program
endif()

# What pkg-config is told that the static libraries need. WebRTC not by its own file, whose compiler options would come with
# it.
set(ORVA_PRIVATE_NEEDS "Requires.private: kett fftw3f\nLibs.private: -lwebrtc_audio_processing -lm")
set(KETT_PRIVATE_NEEDS "Libs.private: -lstdc++")

# export_only(<target> <list> <node>): by a version script; in a static library, by making all other names local.
function(export_only target list node)
    file(STRINGS ${list} names REGEX "^[A-Za-z_]")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
    if(BUILD_SHARED_LIBS)
        list(JOIN names ";\n        " globals)
        file(CONFIGURE OUTPUT ${script} @ONLY
            CONTENT "@node@ {\n    global:\n        @globals@;\n    local:\n        *;\n};\n")
        target_link_options(${target} PRIVATE -Wl,--version-script=${script})
    else()
        list(JOIN names "\n" globals)
        file(CONFIGURE OUTPUT ${script} CONTENT "@globals@\n" @ONLY)
        set_property(TARGET ${target} PROPERTY STATIC_LIBRARY_OPTIONS --keep-global-symbols=${script})
    endif()
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
endfunction()

# one_object_archives()
#
# Static libraries of the current folder hold one object each, in which all their parts are linked together. So any use
# of the library brings the module entry with it, and names that are shared between the parts only are local to that
# object, where they cannot meet a name of the host. Each such library takes its names by export_only().
macro(one_object_archives)
    set(CMAKE_CXX_CREATE_STATIC_LIBRARY
        "<CMAKE_LINKER> -r --force-group-allocation -o <TARGET>.o <OBJECTS>"
        "\"${CMAKE_OBJCOPY}\" <LINK_FLAGS> <TARGET>.o"
        "<CMAKE_AR> rcs <TARGET> <TARGET>.o")
endmacro()

# describe_library(<target> <description>): an ELF file has no place for it.
function(describe_library)
endfunction()
