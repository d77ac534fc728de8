# Makes the build tree TREE of PRESET where there is none; one that is there stays as it was configured.
if(NOT EXISTS ${TREE}/CMakeCache.txt)
  execute_process(
    COMMAND ${CMAKE_COMMAND} --preset ${PRESET} -B ${TREE} -DPARVEX_OTHER_BUILD=${OTHER} -DPARVEX_JOIN_SOURCES=${JOIN}
      -DPARVEX_WARNINGS_AS_ERRORS=${STRICT}
    COMMAND_ERROR_IS_FATAL ANY)
endif()
