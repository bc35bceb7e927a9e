# Gives everything that is about to be packed the time of the release, not that of this build.
set(time @$ENV{SOURCE_DATE_EPOCH})
execute_process(COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch --no-dereference --date=${time} {} +
                COMMAND_ERROR_IS_FATAL ANY)
