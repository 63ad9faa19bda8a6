# What is installed, and the .deb and .rpm of it that script/dist makes. The tool is not a system command: it
# is started from a firmware package, and installed only to be put into one.

include(GNUInstallDirs)
set(tool_directory ${CMAKE_INSTALL_LIBEXECDIR}/varnmenu)
install(TARGETS varnmenu DESTINATION ${tool_directory})
install(PROGRAMS script/varnmenu-package DESTINATION ${tool_directory})
install(FILES doc/varnmenu.8 DESTINATION ${CMAKE_INSTALL_MANDIR}/man8)
install(FILES doc/varnmenu-package.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# The script finds the tool next to itself, so the command is a link to it.
set(command ${PROJECT_BINARY_DIR}/command/varnmenu-package)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/command)
file(CREATE_LINK ../${tool_directory}/varnmenu-package ${command} SYMBOLIC)
install(FILES ${command} DESTINATION ${CMAKE_INSTALL_BINDIR})

# For many servers: users copy the folder.
install(DIRECTORY fleet DESTINATION ${CMAKE_INSTALL_DATADIR}/varnmenu USE_SOURCE_PERMISSIONS
    REGEX "/\\.[^/]*$" EXCLUDE)

# Documents. The copyright file is made by script/dist.
install(FILES README.md CHANGELOG.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${PROJECT_BINARY_DIR}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)

set(CPACK_GENERATOR DEB RPM)
set(CPACK_PACKAGE_VENDOR "Varn Firmware Tools")
set(CPACK_PACKAGE_CONTACT "${VARNMENU_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
"The terminal menu that a Varn firmware package ships, and varnmenu-package,
which makes and checks such a package. The menu is linked statically.")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "ansible-core, expect")
set(CPACK_RPM_FILE_NAME RPM-DEFAULT)
set(CPACK_RPM_PACKAGE_ARCHITECTURE ${CMAKE_SYSTEM_PROCESSOR})
set(VARNMENU_PROCESSOR ${CMAKE_SYSTEM_PROCESSOR} CACHE INTERNAL "For script/dist")
set(CPACK_RPM_PACKAGE_DESCRIPTION "${CPACK_PACKAGE_DESCRIPTION}")
set(CPACK_RPM_PACKAGE_URL ${PROJECT_HOMEPAGE_URL})
# None has been chosen: see packaging/no-licence.
set(CPACK_RPM_PACKAGE_LICENSE "LicenseRef-Undecided")
set(CPACK_RPM_CHANGELOG_FILE ${PROJECT_BINARY_DIR}/changelog.rpm)
set(CPACK_RPM_PACKAGE_SUGGESTS "ansible-core, expect")
set(CPACK_RPM_PACKAGE_AUTOREQPROV OFF)
# The folders are the system's own.
set(CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION
    /usr/libexec /usr/share/doc /usr/share/licenses
    /usr/share/man /usr/share/man/man1 /usr/share/man/man8)
# Nothing that tells one build from another; the program is stripped already.
set(CPACK_RPM_SPEC_MORE_DEFINE "
Packager: ${VARNMENU_MAINTAINER}
%define _buildhost localhost
%define use_source_date_epoch_as_buildtime 1
%define clamp_mtime_to_source_date_epoch 1
%define _build_id_links none
%define __os_install_post %{nil}")

set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/arrange_package.cmake)
include(CPack)
