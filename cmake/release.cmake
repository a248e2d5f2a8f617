# The day of the release, from the newest heading in CHANGELOG.md, which must be that of the project's version: man
# pages and packages bear that date, not the one they were built on.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md newest REGEX "^## " LIMIT_COUNT 1)
if(NOT newest MATCHES "^## ([0-9.]+) \\((.+)\\)$" OR NOT CMAKE_MATCH_1 STREQUAL PROJECT_VERSION)
  message(FATAL_ERROR "The newest heading of CHANGELOG.md is '${newest}', the version is ${PROJECT_VERSION}")
endif()
set(TZM_RELEASE_DATE ${CMAKE_MATCH_2})
file(STRINGS ${PROJECT_SOURCE_DIR}/CITATION.cff cited REGEX "^(version|date-released): ")
if(NOT cited STREQUAL "version: ${PROJECT_VERSION};date-released: ${TZM_RELEASE_DATE}")
  message(FATAL_ERROR "CITATION.cff has '${cited}', the release is ${PROJECT_VERSION} of ${TZM_RELEASE_DATE}")
endif()

# The same in seconds since 1970, and as mail has it. A year begins in March here, so that it ends with the leap day.
string(REPLACE "-" ";" date ${TZM_RELEASE_DATE})
list(TRANSFORM date REPLACE "^0" "")
list(POP_FRONT date year month day)
if(month LESS 3)
  math(EXPR year "${year} - 1")
  math(EXPR month "${month} + 12")
endif()
math(EXPR TZM_RELEASE_EPOCH "86400 * (365 * ${year} + ${year} / 4 - ${year} / 100 + ${year} / 400
  + (153 * (${month} - 3) + 2) / 5 + ${day} - 719469)")
set(epoch_before "$ENV{SOURCE_DATE_EPOCH}")
set(ENV{SOURCE_DATE_EPOCH} ${TZM_RELEASE_EPOCH})
string(TIMESTAMP TZM_RELEASE_DAY "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(ENV{SOURCE_DATE_EPOCH} ${epoch_before})
