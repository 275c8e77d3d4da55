# Read by cpack, when the libraries stand: the packages that they need, as Debian's own tool tells them. CPack itself
# would ask it as well, but then adds scripts that call ldconfig, for which Debian has a trigger.
list(GET CPACK_INSTALL_CMAKE_PROJECTS 0 build)
file(WRITE ${build}/debian/debian/control "")               # the tool wants one
set(tool dpkg-shlibdeps)
if(CPACK_ORVA_SYSROOT)                                    # made by script/sysroot, which leaves there what the tool reads
    set(tool ${CMAKE_COMMAND} -E env DEB_HOST_ARCH=${CPACK_DEBIAN_PACKAGE_ARCHITECTURE} ${tool} -S${CPACK_ORVA_SYSROOT})
endif()
function(needs_of result)
    execute_process(
        COMMAND ${tool} -O --ignore-missing-info -l${build}/src -l${build}/kett ${ARGN}
        WORKING_DIRECTORY ${build}/debian
        OUTPUT_VARIABLE needs ERROR_VARIABLE complaint RESULT_VARIABLE status)
    if(NOT status EQUAL 0 OR NOT needs MATCHES "shlibs:Depends=([^\n]+)")
        message(FATAL_ERROR "dpkg-shlibdeps finds no dependencies: ${complaint}")
    endif()
    set(${result} ${CMAKE_MATCH_1} PARENT_SCOPE)
endfunction()
needs_of(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS -e${build}/src/liborva.so -e${build}/kett/libkett.so)
if(EXISTS ${build}/programs/orva)                         # which reads a private record of this very library
    needs_of(others -e${build}/programs/orva)
    set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS
        "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${CPACK_DEBIAN_PACKAGE_VERSION}), ${others}")
endif()
