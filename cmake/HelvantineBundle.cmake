# SPDX-License-Identifier: MIT
# Part of the package: what a host has to have beside it.

# helvantine_bundle(host [DESTINATION folder] [COMPONENT name])
# Puts the runtime beside the program, where the scan for plugins and the loader look: its libraries and the
# processes that it starts. In the folder that the program is built in, and in the installation, which the program
# itself goes to as well; DESTINATION is "." unless it is given.
function(helvantine_bundle host)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "DESTINATION;COMPONENT" "")
    if(NOT arg_DESTINATION)
        set(arg_DESTINATION .)
    endif()
    if(arg_COMPONENT)
        set(component COMPONENT ${arg_COMPONENT})
    endif()
    list(TRANSFORM Helvantine_RUNTIME REPLACE "(.+)" "$<TARGET_FILE:\\1>" OUTPUT_VARIABLE files)
    set_target_properties(${host} PROPERTIES INSTALL_RPATH "$ORIGIN" BUILD_WITH_INSTALL_RPATH ON)
    add_custom_command(TARGET ${host} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E copy_if_different ${files} $<TARGET_FILE_DIR:${host}> VERBATIM)
    install(TARGETS ${host} RUNTIME DESTINATION ${arg_DESTINATION} ${component})
    install(IMPORTED_RUNTIME_ARTIFACTS ${Helvantine_RUNTIME}
        RUNTIME DESTINATION ${arg_DESTINATION} ${component}
        LIBRARY DESTINATION ${arg_DESTINATION} ${component})
endfunction()
