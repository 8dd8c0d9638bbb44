# What every target of this project shares: strict warnings where the presets ask for them.
function(vell_compile_options target)
    if(VELL_WARNINGS_AS_ERRORS)
        target_compile_options(
            ${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
    endif()
endfunction()
