# The toolchain file for Windows programs, cross-built by Debian's g++-mingw-w64-x86-64-posix. Libraries and
# headers come from the cross compiler's folders alone: a header of this machine's C library would break
# the build in strange ways. Libraries that are only headers are the same on every system, so links to
# Debian's stand in a folder of the build.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(vell_header_only ${CMAKE_BINARY_DIR}/header-only)
foreach(entry include/rapidjson include/CLI share/cmake/CLI11)
    if(NOT EXISTS ${vell_header_only}/${entry} AND EXISTS /usr/${entry})
        cmake_path(GET entry PARENT_PATH folder)
        file(MAKE_DIRECTORY ${vell_header_only}/${folder})
        file(CREATE_LINK /usr/${entry} ${vell_header_only}/${entry} SYMBOLIC)
    endif()
endforeach()
list(APPEND CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${vell_header_only})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
    set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()

# As /usr/include is on this machine: no warnings about what is in there.
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES ${vell_header_only}/include)

# One library less to ship.
set(ZLIB_USE_STATIC_LIBS ON)

# Runs the programs of the build on this machine.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/run-wine.sh)
