# export_only(<target> <list> <node>)
#
# Makes the shared library <target> export the names in the file <list>, under the version node <node>, and nothing
# else. The list holds one name a line; blank lines and lines that start with '#' or '[' (a family) are for the reader.
function(export_only target list node)
    file(STRINGS ${list} names REGEX "^[A-Za-z_]")
    list(JOIN names ";\n        " globals)
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
    file(CONFIGURE OUTPUT ${script} @ONLY
        CONTENT "@node@ {\n    global:\n        @globals@;\n    local:\n        *;\n};\n")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
    target_link_options(${target} PRIVATE -Wl,--version-script=${script})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
endfunction()
