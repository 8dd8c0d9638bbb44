# The tests that are not C++: checks of the sources, of what the libraries export, and of what an
# installed tree is good for.

if(NOT VELL_SANITIZE)
    set(rapidjson_flags)
    if(NOT VELL_RAPIDJSON_INCLUDE IN_LIST CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES)
        set(rapidjson_flags -isystem ${VELL_RAPIDJSON_INCLUDE})
    endif()
    add_test(NAME check.headers
             COMMAND ${PROJECT_SOURCE_DIR}/cmake/check-headers.sh ${CMAKE_CXX_COMPILER} 65
                     ${rapidjson_flags})
    set_tests_properties(check.headers PROPERTIES TIMEOUT 600 PROCESSORS 2)
    add_test(NAME check.layers COMMAND ${PROJECT_SOURCE_DIR}/cmake/check-layers.py)
endif()

if(VELL_TEST_INSTALL AND VELL_INSTALL AND NOT VELL_SANITIZE AND NOT VELL_EXTERNAL_PLATFORM)
    add_test(NAME check.symbols COMMAND ${PROJECT_SOURCE_DIR}/cmake/check-symbols.sh
                                        ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

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
    set_tests_properties(
        install.find_package install.pkg_config install.external_platform
        PROPERTIES FIXTURES_REQUIRED install_tree TIMEOUT 900)
endif()
