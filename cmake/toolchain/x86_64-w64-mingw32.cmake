# For 64-bit Windows, with Debian's MinGW-w64 on another system; what is built runs there under Wine. The libraries that
# are needed come from `script/libraries windows`.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triple x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine64)

set(libraries ${CMAKE_CURRENT_LIST_DIR}/../../build/libraries/windows)
set(CMAKE_FIND_ROOT_PATH ${libraries} /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${libraries}/lib/pkgconfig)
