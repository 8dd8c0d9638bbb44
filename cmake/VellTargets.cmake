# What the targets of this project share.

if(PROJECT_IS_TOP_LEVEL AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
    find_program(VELL_CCACHE ccache)
    mark_as_advanced(VELL_CCACHE)
    if(VELL_CCACHE)
        set(CMAKE_CXX_COMPILER_LAUNCHER ${VELL_CCACHE})
    endif()
endif()

if(VELL_SANITIZE)
    add_compile_options(-fsanitize=${VELL_SANITIZE} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${VELL_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID MATCHES Clang AND VELL_SANITIZE MATCHES undefined)
        add_compile_options(
            -fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/cmake/sanitizer-ignore.txt)
    endif()
endif()

if(MSVC)
    # The sources are UTF-8; a few of them have more sections than its object files have by default.
    # C4251 asks for an export of the standard library's classes that are private members.
    add_compile_options(/utf-8 /permissive- /EHsc /bigobj /wd4251)
endif()
if(MINGW)
    # The same sources give the same file.
    add_link_options(LINKER:--no-insert-timestamp)
endif()

# Strict warnings, where the presets ask for them: for every target of this project, the headers that
# compile alone included.
if(VELL_WARNINGS_AS_ERRORS AND MSVC)
    add_compile_options(/W4 /WX)
elseif(VELL_WARNINGS_AS_ERRORS)
    add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
    # What sanitizers put in between makes g++ see uninitialised values in the standard library; the
    # other presets watch for real ones.
    if(VELL_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        add_compile_options(-Wno-maybe-uninitialized)
    endif()
endif()

# The objects `name` out of the sources `ARGN`, which the library, the unit tests and the command link.
# The macros of include/ that say who compiles begin with `prefix`. Where programs need other objects than
# a shared library, these are for programs; vell_library compiles its own.
function(vell_object_library name prefix)
    add_library(${name} OBJECT ${ARGN})
    target_include_directories(
        ${name}
        PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
        PRIVATE ${PROJECT_SOURCE_DIR})
    if(WIN32 OR NOT BUILD_SHARED_LIBS)
        target_compile_definitions(${name} PUBLIC ${prefix}_STATIC)
    else()
        target_compile_definitions(${name} PRIVATE ${prefix}_BUILDING)
    endif()
    # Calls inside a library go straight to their target, and may be inlined: a host does not replace
    # single functions of it.
    if(UNIX AND NOT VELL_SANITIZE)
        target_compile_options(${name} PRIVATE -fno-semantic-interposition)
    endif()
endfunction()

# The library `name` out of the objects `objects`, shared or static, and how it is installed.
function(vell_library name prefix objects)
    if(NOT BUILD_SHARED_LIBS)
        add_library(${name} STATIC $<TARGET_OBJECTS:${objects}>)
        target_compile_definitions(${name} PUBLIC ${prefix}_STATIC)
    elseif(WIN32)
        if(MSVC)
            target_compile_options(${name} INTERFACE /wd4251)
        endif()
        # An import from a DLL is another call than one within the program: it is compiled as such.
        get_target_property(sources ${objects} SOURCES)
        add_library(${name} SHARED ${sources})
        target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
        target_compile_definitions(${name} PRIVATE ${prefix}_BUILDING)
    else()
        add_library(${name} SHARED $<TARGET_OBJECTS:${objects}>)
    endif()
    add_library(VELL::${name} ALIAS ${name})
    target_include_directories(
        ${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
                       $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_compile_features(${name} INTERFACE cxx_std_17)
    set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
    if(WIN32 AND BUILD_SHARED_LIBS)
        set_target_properties(${name} PROPERTIES PREFIX "" IMPORT_PREFIX "")
    elseif(BUILD_SHARED_LIBS)
        vell_shared_library_options(${name})
    endif()
    if(VELL_INSTALL)
        install(TARGETS ${name} EXPORT VELLTargets
                RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
                LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
                ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
    endif()
endfunction()

# A shared library but for a DLL finds the other ones beside itself, or where a site keeps its own.
function(vell_shared_library_options name)
    # While the interface still grows, a minor version may change it.
    set_target_properties(
        ${name}
        PROPERTIES VERSION ${PROJECT_VERSION}
                   SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
                   INSTALL_RPATH "$ORIGIN;${VELL_EXTERNAL_FOLDERS}")
    # clang leaves the sanitizer's own symbols of a shared library to the program.
    if(UNIX AND NOT APPLE AND NOT (VELL_SANITIZE AND CMAKE_CXX_COMPILER_ID MATCHES Clang))
        target_link_options(${name} PRIVATE LINKER:--no-undefined)
    endif()
    if(UNIX AND NOT APPLE AND NOT VELL_SANITIZE)
        target_link_options(${name} PRIVATE LINKER:-Bsymbolic-functions)
    endif()
endfunction()

# The target `name`, which builds whatever those of the folders that follow it define that are part of
# this build.
function(vell_folder_target name)
    add_custom_target(${name})
    get_property(subdirectories DIRECTORY ${PROJECT_SOURCE_DIR} PROPERTY SUBDIRECTORIES)
    foreach(folder IN LISTS ARGN)
        if(${PROJECT_SOURCE_DIR}/${folder} IN_LIST subdirectories)
            get_property(targets DIRECTORY ${PROJECT_SOURCE_DIR}/${folder}
                         PROPERTY BUILDSYSTEM_TARGETS)
            if(targets)
                add_dependencies(${name} ${targets})
            endif()
        endif()
    endforeach()
endfunction()
