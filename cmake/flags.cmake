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

# Marks for a processor that checks where jumps and returns go. The note that it may check jumps comes into a file once
# the system's own start-up code is marked, which that of Debian 12 is not.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
  target_compile_options(tzm_flags INTERFACE -mbranch-protection=bti)
else()
  target_compile_options(tzm_flags INTERFACE -fcf-protection)
  target_link_options(tzm_flags INTERFACE -Wl,-z,shstk)
endif()

# For companions and tool; the library keeps names that its companions may lack unresolved until they are called.
add_library(tzm_hardened INTERFACE)
target_compile_options(tzm_hardened INTERFACE -fstack-protector-strong)
target_link_options(tzm_hardened INTERFACE -Wl,-z,relro -Wl,-z,now)
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")  # which looks at the same calls
  target_compile_options(tzm_hardened INTERFACE $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
endif()

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
  if(march STREQUAL x86-64-v4)  # of GCC's own intrinsics, which it takes for ours once they are precompiled
    target_compile_options(${name} INTERFACE -Wno-uninitialized -Wno-maybe-uninitialized)
  endif()
endfunction()
tzm_vector_level(tzm_vector ${TZM_MARCH})

# tzm_precompile(TARGET HEADER ...): headers that the compiler reads once for all sources of the target; beneath a
# compiler cache, which would not see that something in them has changed, for each.
function(tzm_precompile target)
  if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()

# tzm_exports(LIBRARY MAP): the linker keeps every name to itself that the version script MAP does not make global.
function(tzm_exports library map)
  target_link_options(${library} PRIVATE -Wl,--version-script=${map})
  set_property(TARGET ${library} APPEND PROPERTY LINK_DEPENDS ${map})
endfunction()
