# Run by CPack for each kind of package once its files lie together: two builds of one commit are to be
# the same, byte by byte. What script/dist has not started keeps its times.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND find . -exec touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} {} +
                    WORKING_DIRECTORY ${CPACK_TEMPORARY_INSTALL_DIRECTORY}
                    COMMAND_ERROR_IS_FATAL ANY)
endif()
