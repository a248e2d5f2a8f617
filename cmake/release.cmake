# The day of the release, from the newest heading in CHANGELOG.md, which must be that of the project's version: man
# pages and packages bear that date, not the one they were built on.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md newest REGEX "^## " LIMIT_COUNT 1)
if(NOT newest MATCHES "^## ([0-9.]+) \\((.+)\\)$" OR NOT CMAKE_MATCH_1 STREQUAL PROJECT_VERSION)
  message(FATAL_ERROR "The newest heading of CHANGELOG.md is '${newest}', the version is ${PROJECT_VERSION}")
endif()
set(TZM_RELEASE_DATE ${CMAKE_MATCH_2})
execute_process(COMMAND date -u -d ${TZM_RELEASE_DATE} +%s OUTPUT_VARIABLE TZM_RELEASE_EPOCH
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
