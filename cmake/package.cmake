# Debian packages, one for each component, of the architecture that the build is for: the target `tzm_packages` makes
# them in the build folder. ./run package makes those of both architectures.
if(NOT TZM_MULTIARCH OR NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL runtime development)
if(TARGET tzm)
  list(APPEND CPACK_COMPONENTS_ALL tool)
endif()
if(TZM_PYTHON)
  list(APPEND CPACK_COMPONENTS_ALL python)
endif()
if(NOT CMAKE_CROSSCOMPILING)  # the documents are the same everywhere
  list(APPEND CPACK_COMPONENTS_ALL documents)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGE_CONTACT "The signal_tzm authors <signal-tzm@debian.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own, the first line of its description
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE amd64)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
endif()

# What policy wants of every package, and what only packages have, out of packaging/.
set(folder ${PROJECT_BINARY_DIR}/debian)
set(templates ${PROJECT_SOURCE_DIR}/packaging)
set(run_package libsignal-tzm${PROJECT_VERSION_MAJOR})
pkg_check_modules(HWY QUIET libhwy)  # for its version
file(STRINGS LICENSE TZM_COPYRIGHT REGEX "^Copyright")
string(REPLACE "Copyright (c) " "" TZM_COPYRIGHT ${TZM_COPYRIGHT})
file(READ LICENSE TZM_LICENSE)
string(REGEX REPLACE "^.*\n(Permission is)" "\\1" TZM_LICENSE "${TZM_LICENSE}")
string(REGEX REPLACE "\n\n" "\n.\n" TZM_LICENSE "${TZM_LICENSE}")
string(REGEX REPLACE "\n$" "" TZM_LICENSE "${TZM_LICENSE}")
string(REPLACE "\n" "\n " TZM_LICENSE " ${TZM_LICENSE}")
foreach(file copyright symbols libsignal-tzm-doc.signal-tzm signal_tzm.spdx.json)
  configure_file(${templates}/${file}.in ${folder}/${file} @ONLY)
endforeach()
file(WRITE ${folder}/changelog "signal-tzm (${PROJECT_VERSION}) unstable; urgency=medium

  * What is new is told by CHANGELOG.md, in the package libsignal-tzm-doc.

 -- ${CPACK_PACKAGE_CONTACT}  ${TZM_RELEASE_DAY}
")
execute_process(COMMAND gzip -9nf ${folder}/changelog COMMAND_ERROR_IS_FATAL ANY)

# tzm_in_package(COMPONENT DESTINATION FILE...): what CPack alone installs, and `cmake --install` does not.
function(tzm_in_package component destination)
  install(CODE "if(DEFINED ENV{TZM_PACKAGE})
    file(INSTALL ${ARGN} DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${destination}\")
  endif()" COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

# tzm_package(COMPONENT NAME SECTION MULTIARCH DESCRIPTION [DEPENDS]): the description's first line is its synopsis.
macro(tzm_package component name section multiarch description)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${description}")
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${ARGN}")
  # CPack before 3.31 has no variable for the second field.
  set(CPACK_DEBIAN_${upper}_PACKAGE_SOURCE "signal-tzm\nMulti-Arch: ${multiarch}")
  tzm_in_package(${component} share/doc/${name} ${folder}/copyright ${folder}/changelog.gz)
  if(EXISTS ${templates}/${component}.overrides.in)  # tags of lintian that are meant, each with its reason
    configure_file(${templates}/${component}.overrides.in ${folder}/overrides/${name} @ONLY)
    tzm_in_package(${component} share/lintian/overrides ${folder}/overrides/${name})
  endif()
endmacro()

string(REPLACE "+crypto" "" level ${TZM_MARCH})  # which only the compiler wants
set(same_version "(= ${PROJECT_VERSION})")
set(about "A shared library with a plain C interface: element-wise arithmetic, elementary
functions, reductions, windows, transforms, filters, resampling, convolution
and correlation, with results that are the same bits on every machine.")
tzm_package(runtime ${run_package} libs same "signal-processing primitives with exact results
${about}
It needs a processor of the level ${level}. Here are the library and its
default companions.")
tzm_in_package(runtime share/doc/${run_package} ${folder}/signal_tzm.spdx.json)
tzm_package(development libsignal-tzm-dev libdevel same "signal-processing primitives - development files
${about}
Here are the headers, a CMake package and a pkg-config file."
  "${run_package} ${same_version}, lib${TZM_CBLAS_NAME}-dev")
tzm_package(tool tzm sound foreign "analyse, filter and make sound files
A command-line program: spectra and spectrograms, levels, filters, resampling,
convolution, noise cancelling, delays, tones and their detection, on sound
files of any format and length, with plots and with data for programs."
  "${run_package} ${same_version}")
tzm_package(python python3-signal-tzm python no "signal-processing primitives - Python 3 module
${about}
Here is the module signal_tzm: every operation on NumPy arrays."
  "${run_package} ${same_version}, python3 (>= 3.9~), python3-numpy, python3-cffi-backend")
set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS libsndfile1)
tzm_package(documents libsignal-tzm-doc doc foreign "signal-processing primitives - documents
${about}
Here are the pages about it, the reference manual and the examples.")
set(CPACK_DEBIAN_DOCUMENTS_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libsignal-tzm-doc)

# The libraries that a file links are looked up in the packages of its architecture; those of the library itself are
# in the build.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
file(WRITE ${folder}/cpack.cmake "set(ENV{DEB_HOST_ARCH} ${CPACK_DEBIAN_PACKAGE_ARCHITECTURE})
set(ENV{TZM_PACKAGE} yes)\n")
set(CPACK_PROJECT_CONFIG_FILE ${folder}/cpack.cmake)

# The loader's cache is renewed, and programs that link the libraries get their dependency. (What CPack would write for
# the latter counts the libraries of a wider level again.)
file(WRITE ${folder}/triggers "activate-noawait ldconfig\n")
list(TRANSFORM tzm_libraries REPLACE "(.+)" "lib\\1 ${PROJECT_VERSION_MAJOR} ${run_package} ${same_version}\n"
  OUTPUT_VARIABLE shlibs)
string(JOIN "" shlibs ${shlibs})
file(WRITE ${folder}/shlibs ${shlibs})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${folder}/triggers ${folder}/shlibs)
find_program(TZM_GENSYMBOLS dpkg-gensymbols DOC "What lists the names of libraries (package dpkg-dev)")
if(TZM_GENSYMBOLS)
  list(TRANSFORM tzm_libraries REPLACE "(.+)" "-e$<TARGET_FILE:\\1>" OUTPUT_VARIABLE files)
  add_custom_command(OUTPUT ${folder}/names/symbols VERBATIM DEPENDS ${tzm_libraries} ${folder}/symbols
    COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}/names
    COMMAND ${CMAKE_COMMAND} -E env DEB_HOST_ARCH=${CPACK_DEBIAN_PACKAGE_ARCHITECTURE} ${TZM_GENSYMBOLS} -q -c4
      -p${run_package} -v${PROJECT_VERSION} -I${folder}/symbols -O${folder}/names/symbols ${files})
  add_custom_target(tzm_symbols ALL DEPENDS ${folder}/names/symbols)
  add_dependencies(tzm_all tzm_symbols)
  list(APPEND CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${folder}/names/symbols)
endif()

# The manual is registered where it is.
if(TARGET tzm_docs)
  tzm_in_package(documents share/doc-base ${folder}/libsignal-tzm-doc.signal-tzm)
endif()

include(CPack)

add_custom_target(tzm_packages VERBATIM
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${PROJECT_BINARY_DIR}/packages
  COMMAND ${CMAKE_CPACK_COMMAND} --config ${PROJECT_BINARY_DIR}/CPackConfig.cmake -B ${PROJECT_BINARY_DIR}/packages)
add_dependencies(tzm_packages tzm_all)
if(TARGET tzm_docs)
  add_dependencies(tzm_packages tzm_docs)
endif()
