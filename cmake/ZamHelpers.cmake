# Shared build settings for every target of the project.

function(zam_target_defaults target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
  if(ZAM_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# zam_add_library(<name> SOURCES ... [PUBLIC_LIBS ...] [PRIVATE_LIBS ...])
function(zam_add_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC_LIBS;PRIVATE_LIBS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC_LIBS} PRIVATE ${ARG_PRIVATE_LIBS})
  zam_target_defaults(${name})
endfunction()

# zam_add_executable(<name> SOURCES ... [LIBS ...])
function(zam_add_executable name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${ZAM_RUNTIME_DIR})
  zam_target_defaults(${name})
endfunction()

# zam_add_test(<name> SOURCES ... [LIBS ...] [ENVIRONMENT ...])
# Tests run headless (offscreen platform) with a private configuration folder, so they
# never touch the user's preference files.
function(zam_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;ENVIRONMENT" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE Qt6::Test ${ARG_LIBS})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  zam_target_defaults(${name})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;XDG_CONFIG_HOME=${CMAKE_BINARY_DIR}/tests/config-${name};ZAM_BIN_DIR=${ZAM_RUNTIME_DIR};ZAM_SOURCE_DIR=${CMAKE_SOURCE_DIR};${ARG_ENVIRONMENT}"
    TIMEOUT 300)
endfunction()
