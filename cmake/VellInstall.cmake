# What `cmake --install` lays down beside the libraries: headers, the command, the CMake package and
# the pkg-config file. All paths in them are relative to where they lie, so the tree can be moved.
include(CMakePackageConfigHelpers)

set(vell_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VELLLibX64)

install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
if(TARGET vell)
    set_target_properties(vell PROPERTIES INSTALL_RPATH "${VELL_EXTERNAL_FOLDERS}")
    install(TARGETS vell RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    set(vell_texts ${PROJECT_BINARY_DIR}/tools/vell)
    install(FILES ${vell_texts}/vell.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    # Where each shell looks for completions.
    install(FILES ${vell_texts}/completions/vell
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install(FILES ${vell_texts}/completions/_vell
            DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
    install(FILES ${vell_texts}/completions/vell.fish
            DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()

install(EXPORT VELLTargets NAMESPACE VELL:: DESTINATION ${vell_package_dir})
configure_package_config_file(
    cmake/VELLLibX64Config.cmake.in ${PROJECT_BINARY_DIR}/VELLLibX64Config.cmake
    INSTALL_DESTINATION ${vell_package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/VELLLibX64ConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VELLLibX64Config.cmake
              ${PROJECT_BINARY_DIR}/VELLLibX64ConfigVersion.cmake cmake/VellMachine.cmake
        DESTINATION ${vell_package_dir})

file(RELATIVE_PATH vell_pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" vell_pc_prefix "${vell_pc_prefix}")
set(vell_pc_cflags ${VELL_STATIC_CFLAGS})
if(NOT BUILD_SHARED_LIBS)
    string(PREPEND vell_pc_cflags " -DVELL_STATIC")
endif()
if(VELL_ARENA_ROUNDING)
    string(APPEND vell_pc_cflags " -DVELL_ARENA_ROUNDING")
endif()
set(vell_pc_libs)
foreach(folder IN LISTS VELL_EXTERNAL_FOLDERS)
    string(APPEND vell_pc_libs " -L${folder}")
endforeach()
configure_file(cmake/vell.pc.in ${PROJECT_BINARY_DIR}/vell.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vell.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
