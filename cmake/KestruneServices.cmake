# SPDX-License-Identifier: GPL-3.0-or-later

# kestrune_services(NAME): the definitions of online services lie beside the program NAME, as they lie in the share
# folder once it is installed. Programs of one folder share them.
function(kestrune_services NAME)
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/InfoGrabber")
  string(MAKE_C_IDENTIFIER "services_${CMAKE_CURRENT_SOURCE_DIR}" copy)
  if(NOT TARGET ${copy})
    file(GLOB files CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/services/*")
    add_custom_command(OUTPUT "${folder}.stamp"
      COMMAND ${CMAKE_COMMAND} -E rm -rf "${folder}"
      COMMAND ${CMAKE_COMMAND} -E copy_directory "${PROJECT_SOURCE_DIR}/services" "${folder}"
      COMMAND ${CMAKE_COMMAND} -E touch "${folder}.stamp"
      DEPENDS ${files}
      VERBATIM)
    add_custom_target(${copy} DEPENDS "${folder}.stamp")
  endif()
  add_dependencies(${NAME} ${copy})
endfunction()
