# What is installed, and what script/dist has to know to make packages of it. The tool is not a system command:
# it is started from a firmware package, and installed only to be put into one.

install(FILES doc/varnmenu.8 DESTINATION ${CMAKE_INSTALL_MANDIR}/man8)
install(FILES doc/varnmenu-package.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# varnmenu-package finds the menu next to itself, so the command is a link to it.
set(command ${PROJECT_BINARY_DIR}/command/varnmenu-package)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/command)
file(CREATE_LINK ../${VARNMENU_TOOL_DIRECTORY}/varnmenu-package ${command} SYMBOLIC)
install(FILES ${command} DESTINATION ${CMAKE_INSTALL_BINDIR})

install(FILES packaging/varnmenu-package.bash RENAME varnmenu-package
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)

# For many servers: users copy the folder.
install(DIRECTORY fleet DESTINATION ${CMAKE_INSTALL_DATADIR}/varnmenu USE_SOURCE_PERMISSIONS
    REGEX "/\\.[^/]*$" EXCLUDE)

install(FILES README.md CHANGELOG.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

# For the programs in packaging.
set(summary "${PROJECT_DESCRIPTION}")
set(maintainer "${VARNMENU_MAINTAINER}")
configure_file(packaging/facts.in ${PROJECT_BINARY_DIR}/facts @ONLY)
