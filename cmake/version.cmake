# VARNMENU_VERSION: PROJECT_VERSION for the files of a release, and something later for all others.

execute_process(COMMAND ${PROJECT_SOURCE_DIR}/packaging/version
                OUTPUT_VARIABLE VARNMENU_VERSION ERROR_VARIABLE reason RESULT_VARIABLE result)
string(REGEX REPLACE " .*" "" VARNMENU_VERSION "${VARNMENU_VERSION}")
if(NOT result EQUAL 0)
    set(VARNMENU_VERSION ${PROJECT_VERSION}+unknown)
    message(NOTICE "${reason}This build calls itself ${VARNMENU_VERSION}.")
endif()
