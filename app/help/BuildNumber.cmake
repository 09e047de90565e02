# Writes OUTPUT with the number of commits and the short commit of SOURCE_DIR's history.
# Without git or a history (a source archive) the number is 0 and the commit empty.
set(Count 0)
set(Commit "")
if(GIT)
  execute_process(COMMAND ${GIT} -C ${SOURCE_DIR} rev-list --count HEAD
                  OUTPUT_VARIABLE GitCount RESULT_VARIABLE CountResult
                  OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  execute_process(COMMAND ${GIT} -C ${SOURCE_DIR} rev-parse --short=10 HEAD
                  OUTPUT_VARIABLE GitCommit RESULT_VARIABLE CommitResult
                  OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(CountResult EQUAL 0 AND GitCount MATCHES "^[0-9]+$")
    set(Count ${GitCount})
  endif()
  if(CommitResult EQUAL 0 AND GitCommit MATCHES "^[0-9a-f]+$")
    set(Commit ${GitCommit})
  endif()
endif()
# file(CONFIGURE) leaves the file untouched when the content is the same.
file(CONFIGURE OUTPUT ${OUTPUT} CONTENT
"#pragma once
#define ZAM_BUILD_NUMBER ${Count}
#define ZAM_BUILD_COMMIT \"${Commit}\"
" @ONLY)
