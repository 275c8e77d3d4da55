# The Debian packages that script/package makes, out of this build with shared libraries and another with static ones:
#   liborva3       both shared libraries
#   liborva-dev    headers, link names, CMake package, pkg-config files, static libraries
#   liborva-doc    the HTML reference
#   python3-orva   the package for Python
#   orva-tools     the program orva, where the programs are built
set(ORVA_STATIC_BUILD "" CACHE PATH
    "Build with static libraries that goes into the packages; makes this build ready to be packed")
if(NOT ORVA_STATIC_BUILD)
    return()
endif()

# Each package tells its licence and what is new.
set(maintainer "liborva maintainers <maintainers@liborva.invalid>")
if(DEFINED ENV{DEBFULLNAME} AND DEFINED ENV{DEBEMAIL})
    set(maintainer "$ENV{DEBFULLNAME} <$ENV{DEBEMAIL}>")
endif()
set(version ${PROJECT_VERSION}-1)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(debian ${PROJECT_BINARY_DIR}/debian)
file(REMOVE_RECURSE ${debian})
configure_file(cmake/debian/changelog.in ${debian}/changelog.Debian @ONLY)
configure_file(CHANGELOG.md ${debian}/changelog COPYONLY)
execute_process(COMMAND gzip -9n changelog changelog.Debian WORKING_DIRECTORY ${debian} COMMAND_ERROR_IS_FATAL ANY)

# orva_package(<group> <package> <components>): the components stand in the Debian package of that name.
function(orva_package group package)
    cpack_add_component_group(${group})
    foreach(component ${ARGN})
        cpack_add_component(${component} GROUP ${group})
    endforeach()
    list(GET ARGN 0 component)
    install(FILES cmake/debian/copyright ${debian}/changelog.gz ${debian}/changelog.Debian.gz
        DESTINATION share/doc/${package} COMPONENT ${component})
endfunction()

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGE_NAME liborva)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# What each of the two builds gives.
set(CPACK_COMPONENTS_SHARED runtime development)
if(CMAKE_CROSSCOMPILING)                                  # what is for all processors is made with the others of one
    set(CPACK_ORVA_SYSROOT ${CMAKE_SYSROOT})
else()
    list(APPEND CPACK_COMPONENTS_SHARED documentation python)
endif()
if(TARGET orva_command)
    list(APPEND CPACK_COMPONENTS_SHARED tools)
endif()
set(CPACK_COMPONENTS_STATIC archives)
set(CPACK_INSTALL_CMAKE_PROJECTS
    ${PROJECT_BINARY_DIR} ${PROJECT_NAME} SHARED /
    ${ORVA_STATIC_BUILD} ${PROJECT_NAME} STATIC /)

set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${maintainer})
set(CPACK_DEBIAN_PACKAGE_VERSION ${version})
set(CPACK_DEBIAN_PACKAGE_SOURCE liborva)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")                 # would be put in front of each description
set(about "liborva offers programs that analyse, annotate, measure and play sound a plain
C interface over buffers and handles of their own: windows, transforms,
correlation, filters, time scaling, noise suppression, interpolation and more.
")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME liborva${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "audio signal processing routines with a plain C interface
${about}
This package has the shared libraries liborva and libkett, its foundation.")
configure_file(cmake/debian/shlibs.in ${debian}/shlibs @ONLY)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${debian}/shlibs ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/packaging_needs.cmake)    # its dependencies

set(CPACK_DEBIAN_DEV_PACKAGE_NAME liborva-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_DESCRIPTION "audio signal processing routines (development files)
${about}
This package has the headers and the static libraries of liborva and libkett,
and what CMake and pkg-config need to find them.")
# The static libraries need the last three; pkg-config looks for the file of FFTW at any question.
string(JOIN ", " CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
    "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${version})"
    libfftw3-dev libwebrtc-audio-processing-dev "libstdc++-12-dev | libstdc++-dev")
set(CPACK_DEBIAN_DEV_PACKAGE_SUGGESTS "liborva-doc, pkg-config, cmake")

set(CPACK_DEBIAN_DOC_PACKAGE_NAME liborva-doc)
set(CPACK_DEBIAN_DOC_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOC_DESCRIPTION "audio signal processing routines (documentation)
${about}
This package has the documentation of liborva and libkett as HTML.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-orva)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/cmake/debian/python/postinst ${PROJECT_SOURCE_DIR}/cmake/debian/python/prerm)
set(CPACK_DEBIAN_PYTHON_DESCRIPTION "audio signal processing routines (Python 3)
${about}
This package has the module orva, which offers them on NumPy arrays, and runs
recipes over folders of recordings on Dask.")
string(JOIN ", " CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (>= ${PROJECT_VERSION})" "python3 (>= 3.9)" python3-cffi-backend
    "python3-numpy (>= 1:1.22)")
set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS python3-soundfile)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-dask, python3-distributed, python3-zarr")     # orva.corpus
install(DIRECTORY build/python/ DESTINATION lib/python3/dist-packages COMPONENT python)     # a wheel, by script/package

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME orva-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "audio signal processing routines at the command line
${about}
This package has the program orva, which runs these routines on sound files and
draws what they do.")

include(CPack)
orva_package(library ${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} runtime)
orva_package(dev liborva-dev development archives)
orva_package(doc liborva-doc documentation)
orva_package(python python3-orva python)
if(TARGET orva_command)
    orva_package(tools orva-tools tools)
endif()
