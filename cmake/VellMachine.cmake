# vell_add_machine(TARGET SOURCE [OUTPUT FILE] [IDS FILE]): compiles the source of a machine, *.hsm.json, when TARGET
# is built, and again when it or a file that it includes changes.
#
#   OUTPUT  the document; default is the name of the source with .json, in the binary folder
#   IDS     a header of the machine's ids, for `#include`; a relative path is in the binary folder
#
# The property VELL_MACHINES of TARGET has the documents. VELL_COMMAND is the command `vell` that is used.
if(POLICY CMP0116)
    cmake_policy(SET CMP0116 NEW) # Ninja finds a depfile whose paths are absolute.
endif()

function(vell_add_machine target source)
    cmake_parse_arguments(PARSE_ARGV 2 arg "" "OUTPUT;IDS" "")
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "vell_add_machine: unknown arguments: ${arg_UNPARSED_ARGUMENTS}")
    endif()
    if(NOT source MATCHES "\\.hsm\\.json$")
        message(FATAL_ERROR "vell_add_machine: ${source}: a source is named *.hsm.json")
    endif()
    if(NOT VELL_COMMAND)
        message(FATAL_ERROR "vell_add_machine: the command vell was not found; set VELL_COMMAND to it")
    endif()
    get_filename_component(source "${source}" ABSOLUTE)
    get_filename_component(name "${source}" NAME)
    string(REGEX REPLACE "\\.hsm\\.json$" "" name "${name}")
    if(NOT arg_OUTPUT)
        set(arg_OUTPUT "${name}.json")
    endif()
    get_filename_component(document "${arg_OUTPUT}" ABSOLUTE BASE_DIR "${CMAKE_CURRENT_BINARY_DIR}")

    # The command tells which files it read. An older CMake takes all sources in the folder for them.
    if(CMAKE_VERSION VERSION_LESS 3.21)
        get_filename_component(folder "${source}" DIRECTORY)
        file(GLOB_RECURSE parts CONFIGURE_DEPENDS "${folder}/*.hsm.json")
        set(follow DEPENDS ${parts})
    else()
        set(follow DEPFILE "${document}.d")
    endif()
    add_custom_command(
        OUTPUT "${document}"
        COMMAND "${VELL_COMMAND}" compile "${source}" -o "${document}" --depfile "${document}.d"
        DEPENDS "${source}" "${VELL_COMMAND}"
        ${follow}
        COMMENT "Compiling ${name}.hsm.json"
        VERBATIM)
    target_sources(${target} PRIVATE "${document}")
    set_property(TARGET ${target} APPEND PROPERTY VELL_MACHINES "${document}")

    if(arg_IDS)
        get_filename_component(header "${arg_IDS}" ABSOLUTE BASE_DIR "${CMAKE_CURRENT_BINARY_DIR}")
        get_filename_component(folder "${header}" DIRECTORY)
        add_custom_command(
            OUTPUT "${header}"
            COMMAND "${VELL_COMMAND}" ids "${document}" --lang cpp -o "${header}"
            DEPENDS "${document}" "${VELL_COMMAND}"
            COMMENT "Writing the ids of ${name}"
            VERBATIM)
        target_sources(${target} PRIVATE "${header}")
        target_include_directories(${target} PRIVATE "${folder}")
    endif()
endfunction()
