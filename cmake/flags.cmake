# Compiler flags that our own targets share.

# Every operation rounds where its contract says so and nowhere else: no contraction, and no
# straight-line vectoriser, which has been seen to fuse products on its own.
add_library(tzm_flags INTERFACE)
target_compile_options(tzm_flags INTERFACE
  -Wall -Wextra -Wno-psabi
  -ffp-contract=off -fno-math-errno -fno-trapping-math -fno-tree-slp-vectorize
  $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-fno-slp-vectorize>
  $<$<BOOL:${TZM_WARNINGS_AS_ERRORS}>:-Werror>)
target_include_directories(tzm_flags INTERFACE ${PROJECT_SOURCE_DIR}/include)

# The baseline of each architecture; TZM_MARCH raises it (x86-64-v4, say).
if(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
  # Highway's functions carry the crypto attribute on AArch64, and only code with the same attribute
  # may inline them; no such instruction is emitted.
  set(TZM_MARCH armv8-a+crypto CACHE STRING "Value of -march")
else()
  set(TZM_MARCH x86-64-v3 CACHE STRING "Value of -march")
endif()

# tzm_vector_level(NAME MARCH): what libraries for that level link. They carry a note of it, so that an older processor
# gets a sentence from the loader, not an illegal instruction.
function(tzm_vector_level name march)
  add_library(${name} INTERFACE)
  target_compile_options(${name} INTERFACE -march=${march})
  target_compile_definitions(${name} INTERFACE HWY_COMPILE_ONLY_STATIC HWY_DISABLE_PCLMUL_AES)
  if(march MATCHES "^x86-64-v[2-4]$")
    target_link_options(${name} INTERFACE -Wl,-z,${march})
  endif()
endfunction()
tzm_vector_level(tzm_vector ${TZM_MARCH})
