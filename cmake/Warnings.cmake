# Warnings on for our own targets; fatal unless OVD_WERROR is switched off.
function(ovd_target_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                             -Wno-sign-conversion)
    if(OVD_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()
