# packaged_program(TARGET): a program of the packages of varnmenu. packaging/programs lists them all.

include(CheckLinkerFlag)
include(GNUInstallDirs)
set(VARNMENU_TOOL_DIRECTORY ${CMAKE_INSTALL_LIBEXECDIR}/varnmenu)

# link_where_known(TARGET NAME TRIAL VALUE): passes --NAME=VALUE to a linker that takes --NAME=TRIAL
function(link_where_known target name trial value)
    check_linker_flag(CXX "SHELL:-Xlinker --${name}=${trial}" LINKER_KNOWS_${name})
    if(LINKER_KNOWS_${name})
        target_link_options(${target} PRIVATE "SHELL:-Xlinker '--${name}=${value}'")
    endif()
endfunction()

function(packaged_program target)
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
    # What the program is, as readelf --notes shows it.
    string(CONCAT note [[{"type":"generic","name":"varnmenu","version":"]] ${VARNMENU_VERSION}
           [[","architecture":"]] ${CMAKE_SYSTEM_PROCESSOR} [["}]])
    link_where_known(${target} package-metadata {} ${note})
    # What is linked into it, for packaging/linked-files. Relative, as the link line is shipped for relinking.
    link_where_known(${target} Map /dev/null ${target}.map)
    install(TARGETS ${target} DESTINATION ${VARNMENU_TOOL_DIRECTORY})
endfunction()
