# What `cmake --install` puts where. Everything is found relative to where it stands, so that the prefix can be moved.
#   runtime         the shared libraries under the names that programs load
#   development     headers, link names, CMake package, pkg-config files
#   archives        the static libraries of a static build, which may share a prefix with a shared one
#   tools           the program orva, where the programs are built
#   documentation   the HTML reference, where script/docs has made it
include(CMakePackageConfigHelpers)

if(BUILD_SHARED_LIBS)
    set(kind shared)
    set(kind_component development)
else()
    set(kind static)
    set(kind_component archives)
    # A static library hands what it needs on to the program.
    target_link_libraries(orva PRIVATE $<INSTALL_INTERFACE:PkgConfig::ORVA_STATIC_NEEDS> $<INSTALL_INTERFACE:m>)
    target_link_libraries(kett PRIVATE $<INSTALL_INTERFACE:stdc++>)
endif()

install(TARGETS orva kett EXPORT orva-${kind}-targets
    RUNTIME COMPONENT runtime                             # a DLL, whose import library is an archive
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT ${kind_component})
install(DIRECTORY include/orva kett/include/kett TYPE INCLUDE COMPONENT development)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/orva)
install(EXPORT orva-${kind}-targets NAMESPACE orva:: DESTINATION ${package_folder} COMPONENT ${kind_component})
configure_package_config_file(cmake/orva-config.cmake.in orva-config.cmake INSTALL_DESTINATION ${package_folder}
    PATH_VARS CMAKE_INSTALL_LIBDIR
    NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(orva-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orva-config.cmake ${PROJECT_BINARY_DIR}/orva-config-version.cmake
    DESTINATION ${package_folder} COMPONENT development)

set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(CMAKE_INSTALL_PREFIX STREQUAL /usr)
    set(pkgconfig_prefix /usr)                            # does not move; pkg-config leaves out what the compiler knows
else()
    string(REGEX REPLACE "[^/]+" ".." up ${pkgconfig_folder})
    set(pkgconfig_prefix "\${pcfiledir}/${up}")
endif()
get_target_property(kett_version kett VERSION)
foreach(library orva kett)
    configure_file(cmake/${library}.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${pkgconfig_folder} COMPONENT development)
endforeach()

install(DIRECTORY build/docs/html TYPE DOC COMPONENT documentation OPTIONAL)
include(platform/${ORVA_PLATFORM}_install OPTIONAL)

if(PROJECT_IS_TOP_LEVEL)
    add_custom_target(uninstall
        COMMAND ${CMAKE_COMMAND} -D MANIFEST=${PROJECT_BINARY_DIR}/install_manifest.txt
            -P ${CMAKE_CURRENT_LIST_DIR}/uninstall.cmake
        COMMENT "Taking away what the last cmake --install has put in place"
        VERBATIM)
endif()
