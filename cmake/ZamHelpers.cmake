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
# Tests run headless (offscreen platform) with private configuration and state folders, so
# they never touch the user's preference files or document backups.
function(zam_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;ENVIRONMENT" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE Qt6::Test ${ARG_LIBS})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  zam_target_defaults(${name})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;XDG_CONFIG_HOME=${CMAKE_BINARY_DIR}/tests/config-${name};XDG_STATE_HOME=${CMAKE_BINARY_DIR}/tests/state-${name};ZAM_BIN_DIR=${ZAM_RUNTIME_DIR};ZAM_SOURCE_DIR=${CMAKE_SOURCE_DIR};${ARG_ENVIRONMENT}"
    TIMEOUT 300)
endfunction()

# zam_add_fuzzer(<name> SOURCES ... [INSTRUMENT <library>...] [LIBS ...] [FLAGS ...] [CORPUS <folder>])
# A libFuzzer target, made only when configured with clang++ and -DZAM_FUZZ=ON. The
# libraries under INSTRUMENT are built once more from their own sources with the fuzzer's
# sanitizers (as <library>Fuzz), so findings point into our code; LIBS are linked as they are.
# FLAGS go to the target and the instrumented copies alike. CORPUS is the seed folder in the
# tree (relative to the calling folder): make fuzz starts from it, and in a normal build with
# tests the test <name>_replay runs every file in it through the same entry point.
function(zam_add_fuzzer name)
  cmake_parse_arguments(ARG "" "CORPUS" "SOURCES;INSTRUMENT;LIBS;FLAGS" ${ARGN})
  if(ARG_CORPUS)
    get_filename_component(corpus ${ARG_CORPUS} ABSOLUTE BASE_DIR ${CMAKE_CURRENT_SOURCE_DIR})
  endif()
  if(NOT ZAM_FUZZ)
    if(ZAM_BUILD_TESTS AND ARG_CORPUS)
      zam_add_fuzz_replay(${name} SOURCES ${ARG_SOURCES} LIBS ${ARG_INSTRUMENT} ${ARG_LIBS} CORPUS ${corpus})
    endif()
    return()
  endif()
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "ZAM_FUZZ needs clang++ (-DCMAKE_CXX_COMPILER=clang++)")
  endif()
  set(sanitizers address,undefined)
  set(common -fno-sanitize-recover=undefined -fno-omit-frame-pointer ${ARG_FLAGS})
  set(instrumented)
  foreach(lib IN LISTS ARG_INSTRUMENT)
    if(NOT TARGET ${lib}Fuzz)
      get_target_property(lib_dir ${lib} SOURCE_DIR)
      get_target_property(lib_sources ${lib} SOURCES)
      list(TRANSFORM lib_sources PREPEND ${lib_dir}/ REGEX "^[^/]")
      add_library(${lib}Fuzz STATIC ${lib_sources})
      target_include_directories(${lib}Fuzz PUBLIC ${PROJECT_SOURCE_DIR})
      target_link_libraries(${lib}Fuzz PUBLIC $<TARGET_PROPERTY:${lib},LINK_LIBRARIES>)
      target_compile_options(${lib}Fuzz PRIVATE -fsanitize=fuzzer-no-link,${sanitizers} ${common})
      get_target_property(lib_automoc ${lib} AUTOMOC)
      set_target_properties(${lib}Fuzz PROPERTIES AUTOMOC ${lib_automoc} AUTOUIC OFF AUTORCC OFF)
      zam_target_defaults(${lib}Fuzz)
    endif()
    list(APPEND instrumented ${lib}Fuzz)
  endforeach()
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_options(${name} PRIVATE -fsanitize=fuzzer,${sanitizers} ${common})
  target_link_options(${name} PRIVATE -fsanitize=fuzzer,${sanitizers} ${common})
  target_link_libraries(${name} PRIVATE ${instrumented} ${ARG_LIBS})
  set_target_properties(${name} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF RUNTIME_OUTPUT_DIRECTORY ${ZAM_RUNTIME_DIR})
  zam_target_defaults(${name})
  zam_register_fuzzer(${name} "${corpus}")
endfunction()

# Enters a fuzz target and its seed folder in <build>/ZamFuzzers.txt, which make fuzz reads.
function(zam_register_fuzzer name corpus)
  set_property(GLOBAL APPEND PROPERTY ZAM_FUZZER_TABLE "${name} ${corpus}")
  get_property(rows GLOBAL PROPERTY ZAM_FUZZER_TABLE)
  list(JOIN rows "\n" text)
  file(WRITE ${CMAKE_BINARY_DIR}/ZamFuzzers.txt "${text}\n")
endfunction()

# zam_add_fuzz_replay(<name> SOURCES ... [LIBS ...] CORPUS <folder>)
# The fuzz entry point built without libFuzzer as <name>_replay, which feeds it every seed
# file; tests/support turns each into a test, so a finding once fixed and kept in the corpus
# stays fixed.
function(zam_add_fuzz_replay name)
  cmake_parse_arguments(ARG "" "CORPUS" "SOURCES;LIBS" ${ARGN})
  add_executable(${name}_replay ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/tests/support/FuzzReplayMain.cpp)
  target_include_directories(${name}_replay PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name}_replay PRIVATE ${ARG_LIBS} Qt6::Core)
  set_target_properties(${name}_replay PROPERTIES AUTOMOC OFF RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  zam_target_defaults(${name}_replay)
  set_property(GLOBAL APPEND PROPERTY ZAM_FUZZ_REPLAYS "${name}_replay=${ARG_CORPUS}")
endfunction()
