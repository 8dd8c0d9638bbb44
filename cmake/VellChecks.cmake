# The tests that are not C++: checks of the sources, of what the libraries export, and of what an
# installed tree is good for.

# The headers of `ARGN`, relative to the folder `base`, each compiled in a source of its own by the target
# all_verify_interface_header_sets.
function(vell_headers_compile_alone name base)
    add_library(${name} INTERFACE)
    target_sources(${name} INTERFACE FILE_SET HEADERS BASE_DIRS ${base} FILES ${ARGN})
    set_target_properties(${name} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
endfunction()

# Of the sources alone: a second build would check them again.
if(VELL_CHECKS AND VELL_BUILD_TOOLS AND CMAKE_BUILD_TYPE STREQUAL Debug AND NOT VELL_SANITIZE
   AND NOT VELL_EXTERNAL_PLATFORM)
    # Public headers see include/ and nothing else of ours.
    file(GLOB public_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/*/*.h)
    vell_headers_compile_alone(public_headers ${PROJECT_SOURCE_DIR}/include ${public_headers})
    target_link_libraries(public_headers INTERFACE VELLLibX64)

    list(TRANSFORM vell_folders REPLACE ".+" "${PROJECT_SOURCE_DIR}/\\0/*.h" OUTPUT_VARIABLE patterns)
    foreach(folder platform tools tests)
        list(APPEND patterns ${PROJECT_SOURCE_DIR}/${folder}/*/*.h)
    endforeach()
    file(GLOB private_headers CONFIGURE_DEPENDS ${patterns} ${PROJECT_SOURCE_DIR}/bench/*.h)
    vell_headers_compile_alone(private_headers ${PROJECT_SOURCE_DIR} ${private_headers})
    target_link_libraries(private_headers INTERFACE vell_tool_objects GTest::gmock)

    add_test(NAME check.headers COMMAND ${PROJECT_SOURCE_DIR}/cmake/check-headers.sh
                                        ${PROJECT_BINARY_DIR})
    set_tests_properties(check.headers PROPERTIES TIMEOUT 900 PROCESSORS 2)
    add_test(NAME check.layers COMMAND ${PROJECT_SOURCE_DIR}/cmake/check-layers.py)
    add_test(NAME check.old_standard
             COMMAND ${PROJECT_SOURCE_DIR}/tests/consumer/check-old-standard.sh ${CMAKE_CXX_COMPILER})
    add_test(NAME check.target
             COMMAND ${PROJECT_SOURCE_DIR}/tests/consumer/check-target.sh ${CMAKE_CXX_COMPILER}
                     ${PROJECT_BINARY_DIR}/target-tests)
    add_test(NAME check.performance_page COMMAND ${PROJECT_SOURCE_DIR}/bench/page.sh --check)
    add_test(NAME check.faults COMMAND ${PROJECT_SOURCE_DIR}/tests/faults/run.sh --check)
endif()

if(VELL_CHECKS AND VELL_INSTALL AND BUILD_SHARED_LIBS AND NOT VELL_SANITIZE
   AND NOT VELL_EXTERNAL_PLATFORM)
    add_test(NAME check.symbols COMMAND ${PROJECT_SOURCE_DIR}/cmake/check-symbols.sh
                                        ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

    # The baselines describe what g++ builds for x86-64 with -g, as the preset dev does.
    find_program(VELL_ABIDIFF abidiff)
    mark_as_advanced(VELL_ABIDIFF)
    if(VELL_ABIDIFF AND CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_SYSTEM_PROCESSOR STREQUAL x86_64
       AND CMAKE_BUILD_TYPE STREQUAL Debug AND CMAKE_CXX_FLAGS_DEBUG MATCHES "-g( |$)")
        add_test(NAME check.abi COMMAND ${PROJECT_SOURCE_DIR}/cmake/check-abi.sh
                                        ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
    endif()

    set(scratch ${PROJECT_BINARY_DIR}/install-tests)
    set(consumer ${PROJECT_SOURCE_DIR}/tests/consumer)

    # Installed in one place and moved to another: nothing in the tree may name where it was.
    add_test(NAME install.tree
             COMMAND ${PROJECT_SOURCE_DIR}/tests/consumer/install-and-move.sh
                     ${PROJECT_BINARY_DIR} ${scratch})
    set_tests_properties(install.tree PROPERTIES FIXTURES_SETUP install_tree)

    add_test(NAME install.find_package
             COMMAND ${consumer}/run-find-package.sh ${CMAKE_CXX_COMPILER} ${scratch}/moved
                     ${scratch}/find_package)
    add_test(NAME install.pkg_config
             COMMAND ${consumer}/run-pkg-config.sh ${CMAKE_CXX_COMPILER} ${scratch}/moved
                     ${scratch}/pkg_config ${CMAKE_INSTALL_LIBDIR})
    add_test(NAME install.external_platform
             COMMAND ${consumer}/run-external-platform.sh ${CMAKE_CXX_COMPILER} ${scratch}/moved
                     ${scratch}/external)
    add_test(NAME install.machine
             COMMAND ${consumer}/run-machine.sh ${CMAKE_CXX_COMPILER} ${scratch}/moved
                     ${scratch}/machine)
    set_tests_properties(install.machine PROPERTIES SKIP_RETURN_CODE 77)
    set_tests_properties(
        install.find_package install.pkg_config install.external_platform install.machine
        PROPERTIES FIXTURES_REQUIRED install_tree TIMEOUT 900)

    # The other ways to have the library: static, and built as a part of the host. They build it themselves.
    if(CMAKE_BUILD_TYPE STREQUAL Debug)
        set(scratch ${PROJECT_BINARY_DIR}/source-tests)
        add_test(NAME install.static
                 COMMAND ${consumer}/run-static.sh ${CMAKE_CXX_COMPILER} ${scratch}/static
                         ${CMAKE_INSTALL_LIBDIR})
        add_test(NAME install.add_subdirectory
                 COMMAND ${consumer}/run-subproject.sh ${CMAKE_CXX_COMPILER} ${scratch}/add_subdirectory)
        add_test(NAME install.fetch_content
                 COMMAND ${consumer}/run-subproject.sh ${CMAKE_CXX_COMPILER} ${scratch}/fetch_content
                         -DVELL_BY_FETCH_CONTENT=ON -DBUILD_SHARED_LIBS=OFF)
        set_tests_properties(install.static install.add_subdirectory install.fetch_content
                             PROPERTIES TIMEOUT 900)
    endif()
endif()
