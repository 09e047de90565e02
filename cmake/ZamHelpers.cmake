# Shared build settings for every target of the project.

function(zam_target_defaults target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
  if(ZAM_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# zam_add_library(<name> SOURCES ... [PUBLIC_LIBS ...] [PRIVATE_LIBS ...])
# A library's own headers are included by their bare name from its folder; every other
# project header by its path from the top of the tree ("Tools/ZamTString.h"), so the top is
# the only include folder a library hands on. Headers ending in _p.h are the library's own.
# Each library is entered in a table that the layering test reads (zam_write_library_table).
function(zam_add_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC_LIBS;PRIVATE_LIBS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC_LIBS} PRIVATE ${ARG_PRIVATE_LIBS})
  zam_target_defaults(${name})
  file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  set(folders ${folder})
  foreach(source IN LISTS ARG_SOURCES)
    get_filename_component(source_dir ${CMAKE_CURRENT_SOURCE_DIR}/${source} DIRECTORY)
    file(RELATIVE_PATH source_dir ${PROJECT_SOURCE_DIR} ${source_dir})
    list(APPEND folders ${source_dir})
  endforeach()
  list(REMOVE_DUPLICATES folders)
  list(JOIN folders "," folders)
  set(row "${name} ${folders}")
  foreach(lib IN LISTS ARG_PUBLIC_LIBS ARG_PRIVATE_LIBS)
    if(lib MATCHES "^Zam")
      string(APPEND row " ${lib}")
    endif()
  endforeach()
  set_property(GLOBAL APPEND PROPERTY ZAM_LIBRARY_TABLE "${row}")
endfunction()

# Writes one line per library: its name, its folders from the top of the tree (its own
# first, then those of its sources), and the project libraries it links.
function(zam_write_library_table path)
  get_property(rows GLOBAL PROPERTY ZAM_LIBRARY_TABLE)
  list(JOIN rows "\n" text)
  file(WRITE ${path} "${text}\n")
endfunction()

# zam_add_executable(<name> SOURCES ... [LIBS ...])
function(zam_add_executable name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
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
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE Qt6::Test ${ARG_LIBS})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  zam_target_defaults(${name})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;XDG_CONFIG_HOME=${CMAKE_BINARY_DIR}/tests/config-${name};ZAM_BIN_DIR=${ZAM_RUNTIME_DIR};ZAM_SOURCE_DIR=${CMAKE_SOURCE_DIR};${ARG_ENVIRONMENT}"
    TIMEOUT 300)
endfunction()
