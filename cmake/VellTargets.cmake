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

# Strict warnings, where the presets ask for them: for every target of this project, the headers that
# compile alone included.
if(VELL_WARNINGS_AS_ERRORS)
    add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
    # What sanitizers put in between makes g++ see uninitialised values in the standard library; the
    # other presets watch for real ones.
    if(VELL_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        add_compile_options(-Wno-maybe-uninitialized)
    endif()
endif()

# Calls inside a library go straight to their target, and may be inlined: a host does not replace single
# functions of it.
function(vell_library_options objects)
    if(UNIX AND NOT VELL_SANITIZE)
        target_compile_options(${objects} PRIVATE -fno-semantic-interposition)
    endif()
endfunction()

# The shared library `name` out of the object library `objects`, and how it is installed. It finds
# the other libraries beside itself, or where a site keeps its own.
function(vell_shared_library name objects)
    add_library(${name} SHARED)
    add_library(VELL::${name} ALIAS ${name})
    target_link_libraries(${name} PRIVATE ${objects})
    target_include_directories(
        ${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
                       $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_compile_features(${name} INTERFACE cxx_std_17)
    # While the interface still grows, a minor version may change it.
    set_target_properties(
        ${name}
        PROPERTIES LINKER_LANGUAGE CXX
                   VERSION ${PROJECT_VERSION}
                   SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
                   INSTALL_RPATH "$ORIGIN;${VELL_EXTERNAL_FOLDERS}")
    # clang leaves the sanitizer's own symbols of a shared library to the program.
    if(UNIX AND NOT APPLE AND NOT (VELL_SANITIZE AND CMAKE_CXX_COMPILER_ID MATCHES Clang))
        target_link_options(${name} PRIVATE LINKER:--no-undefined)
    endif()
    if(UNIX AND NOT APPLE AND NOT VELL_SANITIZE)
        target_link_options(${name} PRIVATE LINKER:-Bsymbolic-functions)
    endif()
    vell_library_options(${objects})
    if(VELL_INSTALL)
        install(TARGETS ${name} EXPORT VELLTargets
                RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
                LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
                ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
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
