# Run by CPack for each kind of package after its files have been copied into one folder.
string(TOLOWER ${CPACK_GENERATOR} kind)
set(packaging ${CMAKE_CURRENT_LIST_DIR}/../packaging)
execute_process(COMMAND ${packaging}/arrange ${kind} ${CPACK_TEMPORARY_INSTALL_DIRECTORY}
                        ${CPACK_PACKAGE_NAME} ${CPACK_PACKAGE_CONTACT}
                COMMAND_ERROR_IS_FATAL ANY)
if(kind STREQUAL "rpm")
    execute_process(COMMAND ${packaging}/changelog rpm ${CPACK_PACKAGE_NAME} ${CPACK_PACKAGE_CONTACT}
                    OUTPUT_FILE ${CPACK_RPM_CHANGELOG_FILE} COMMAND_ERROR_IS_FATAL ANY)
endif()
