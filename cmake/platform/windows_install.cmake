# What is installed on Windows besides, and the ZIP that script/package makes of all but the documents.

# The import libraries in the form of Visual C++, under the names that it would give them.
find_program(LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14 REQUIRED)
foreach(library orva kett)
    set(import_library ${PROJECT_BINARY_DIR}/${library}.lib)
    get_target_property(definition ${library} EXPORT_DEFINITION)
    add_custom_command(OUTPUT ${import_library}
        COMMAND ${LLVM_DLLTOOL} -m i386:x86-64 -D lib${library}.dll -d ${definition} -l ${import_library}
        DEPENDS ${definition}
        VERBATIM)
    add_custom_target(${library}_import_library ALL DEPENDS ${import_library})
    install(FILES ${import_library} TYPE LIB COMPONENT development)
endforeach()

# FFTW, and the licences of all that is in the DLLs.
install(FILES ${FFTW_DLL} TYPE BIN COMPONENT runtime)
install(FILES CHANGELOG.md LICENSE.md DESTINATION . COMPONENT runtime)
install(DIRECTORY LICENSES DESTINATION . COMPONENT runtime)
foreach(licence FFTW GCC MinGW-w64)
    install(FILES ${FFTW_PREFIX}/licences/${licence}.txt DESTINATION LICENSES COMPONENT runtime)
endforeach()
configure_file(cmake/windows/readme.txt.in ${PROJECT_BINARY_DIR}/README.txt @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/README.txt DESTINATION . COMPONENT runtime)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME liborva)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_CMAKE_PROJECTS
    ${PROJECT_BINARY_DIR} ${PROJECT_NAME} runtime /
    ${PROJECT_BINARY_DIR} ${PROJECT_NAME} development /)
include(CPack)
