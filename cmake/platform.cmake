# ORVA_PLATFORM: the kind of system that both libraries are built for. All that is written for one kind stands in
# kett/src/platform/<kind>/, kett/twice/platform/<kind>/ and src/platform/<kind>/, behind the headers of the folder above,
# and in cmake/platform/<kind>.cmake, which adds to the options of compiler and linker and defines:
#   export_only(<target> <list> <node>)     the library <target> shows the names in the file <list> and nothing else, a
#                                           shared one under the version node <node> where there are such. The list holds
#                                           one name a line; blank lines and lines that start with '#' or '[' (a family)
#                                           are for the reader
#   one_object_archives()                   static libraries of the current folder hold one object each
#   describe_library(<target> <text>)       the file of a shared library tells its version and what it is, where files do
# What is installed and packed on one kind alone stands in cmake/platform/<kind>_install.cmake, if there is anything.
if(WIN32)
    set(ORVA_PLATFORM windows)
else()
    set(ORVA_PLATFORM posix)
endif()
include(platform/${ORVA_PLATFORM})
