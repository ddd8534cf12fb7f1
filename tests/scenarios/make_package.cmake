# Makes the sample package unless it is there; one of this build's own is made anew when the tool is
# newer than it.
if(EXISTS ${PACKAGE} AND NOT (OWN AND ${ZEVPACK} IS_NEWER_THAN ${PACKAGE}))
  return()
endif()
get_filename_component(folder ${PACKAGE} DIRECTORY)
file(MAKE_DIRECTORY ${folder})
execute_process(COMMAND ${ZEVPACK} sample --to ${folder}/sample COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${ZEVPACK} build --image ${IMAGE} --members ${folder}/sample --output ${PACKAGE}
                COMMAND_ERROR_IS_FATAL ANY)
