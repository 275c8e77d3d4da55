# Read by cpack, when the libraries stand: the packages that they need, as Debian's own tool tells them. CPack itself
# would ask it as well, but then adds scripts that call ldconfig, for which Debian has a trigger.
list(GET CPACK_INSTALL_CMAKE_PROJECTS 0 build)
file(WRITE ${build}/debian/debian/control "")               # the tool wants one
execute_process(
    COMMAND dpkg-shlibdeps -O --ignore-missing-info -e${build}/src/liborva.so -e${build}/kett/libkett.so
    WORKING_DIRECTORY ${build}/debian
    OUTPUT_VARIABLE needs ERROR_VARIABLE complaint RESULT_VARIABLE status)
if(NOT status EQUAL 0 OR NOT needs MATCHES "shlibs:Depends=([^\n]+)")
    message(FATAL_ERROR "dpkg-shlibdeps finds no dependencies: ${complaint}")
endif()
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS ${CMAKE_MATCH_1})
