# The libraries once more for each wider level of the processor in TZM_HWCAPS, from the same sources. Installed in
# glibc-hwcaps/LEVEL beside the others, they are what the loader takes on a processor of that level. In the build they
# stand apart, so that what runs there has the level of TZM_MARCH; LD_LIBRARY_PATH=BUILD/hwcaps gives the loader the
# choice.
set(wider "")
if(PROJECT_IS_TOP_LEVEL AND TZM_MARCH STREQUAL "x86-64-v3")
  set(wider x86-64-v4)
endif()
set(TZM_HWCAPS "${wider}" CACHE STRING "Levels that the libraries are built for as well, for glibc-hwcaps")

set(tzm_wider_libraries "")
foreach(level IN LISTS TZM_HWCAPS)
  tzm_vector_level(tzm_vector_${level} ${level})
  set(copies "")
  foreach(library IN LISTS tzm_libraries)
    add_library(${library}_${level} SHARED)
    foreach(property SOURCES PRECOMPILE_HEADERS COMPILE_OPTIONS INCLUDE_DIRECTORIES LINK_LIBRARIES LINK_OPTIONS
        LINK_DEPENDS CXX_VISIBILITY_PRESET VISIBILITY_INLINES_HIDDEN VERSION SOVERSION)
      get_target_property(value ${library} ${property})
      if(property STREQUAL SOURCES)
        get_target_property(folder ${library} SOURCE_DIR)
        list(TRANSFORM value PREPEND ${folder}/ REGEX "^[^/]")
      endif()
      string(REPLACE tzm_vector tzm_vector_${level} value "${value}")
      if(NOT value MATCHES "-NOTFOUND$")
        set_property(TARGET ${library}_${level} PROPERTY ${property} "${value}")
      endif()
    endforeach()
    set_target_properties(${library}_${level} PROPERTIES OUTPUT_NAME ${library}
      LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/hwcaps/glibc-hwcaps/${level})
    list(APPEND copies ${library}_${level})
  endforeach()
  list(APPEND tzm_wider_libraries ${copies})
endforeach()
