# Puts the program of this build in front of the sample product.
get_filename_component(folder ${PACKAGE} DIRECTORY)
file(MAKE_DIRECTORY ${folder})
if(NOT EXISTS ${MEMBERS})
  execute_process(COMMAND ${ZEVPACK} sample --to ${MEMBERS} COMMAND_ERROR_IS_FATAL ANY)
endif()
execute_process(COMMAND ${ZEVPACK} build --image ${IMAGE} --members ${MEMBERS} --output ${PACKAGE}
                COMMAND_ERROR_IS_FATAL ANY)
