# What is installed, so that find_package(signal_tzm CONFIG) and pkg-config signal_tzm work from any prefix,
# also after the whole prefix has been moved. A component is one Debian package.
include(CMakePackageConfigHelpers)

set(tzm_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/signal_tzm)
set(CMAKE_INSTALL_SO_NO_EXE TRUE)  # as Debian has it; CMake does so by itself only where it does not cross-compile

# tzm_must_be_built(COMPONENT FILE...): its installation begins with a look whether all of it is there.
function(tzm_must_be_built component)
  install(CODE "foreach(file IN ITEMS ${ARGN})
    if(NOT EXISTS \"\${file}\")
      message(FATAL_ERROR
        \"Not all of signal_tzm is built yet. First run: cmake --build ${PROJECT_BINARY_DIR} --target tzm_all\")
    endif()
  endforeach()" COMPONENT ${component})
endfunction()
list(TRANSFORM tzm_libraries REPLACE "(.+)" "$<TARGET_FILE:\\1>" OUTPUT_VARIABLE files)
list(TRANSFORM tzm_wider_libraries REPLACE "(.+)" "$<TARGET_FILE:\\1>" OUTPUT_VARIABLE wider_files)
tzm_must_be_built(runtime ${files} ${wider_files})

install(TARGETS ${tzm_libraries} EXPORT signal_tzmTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
foreach(level IN LISTS TZM_HWCAPS)
  list(TRANSFORM tzm_libraries APPEND _${level} OUTPUT_VARIABLE copies)
  install(TARGETS ${copies} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/glibc-hwcaps/${level}
    COMPONENT runtime NAMELINK_SKIP)
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT signal_tzmTargets NAMESPACE signal_tzm:: DESTINATION ${tzm_package_dir} COMPONENT development)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/signal_tzmConfig.cmake.in
  ${PROJECT_BINARY_DIR}/signal_tzmConfig.cmake INSTALL_DESTINATION ${tzm_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/signal_tzmConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/signal_tzmConfig.cmake ${PROJECT_BINARY_DIR}/signal_tzmConfigVersion.cmake
  DESTINATION ${tzm_package_dir} COMPONENT development)

# pkg-config finds the prefix from the place of its file.
file(RELATIVE_PATH TZM_PREFIX_FROM_PC
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" TZM_PREFIX_FROM_PC ${TZM_PREFIX_FROM_PC})
get_filename_component(TZM_CBLAS_NAME ${TZM_CBLAS_LIBRARY} NAME_WE)
string(REGEX REPLACE "^lib" "" TZM_CBLAS_NAME ${TZM_CBLAS_NAME})
configure_file(${CMAKE_CURRENT_LIST_DIR}/signal_tzm.pc.in ${PROJECT_BINARY_DIR}/signal_tzm.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/signal_tzm.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(TARGET tzm)
  # One run path for the build and for any prefix: CMake writes an empty entry, the current folder, where it has to
  # exchange one for the other.
  file(RELATIVE_PATH libraries_from_tool ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set(run_path ../lib ${libraries_from_tool})
  list(REMOVE_DUPLICATES run_path)
  list(TRANSFORM run_path PREPEND $ORIGIN/)
  set_target_properties(tzm PROPERTIES BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "${run_path}")
  set(completion ${PROJECT_BINARY_DIR}/tool/completion)
  tzm_must_be_built(tool $<TARGET_FILE:tzm> ${completion}/tzm)
  install(TARGETS tzm DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
  install(FILES ${completion}/tzm DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tool)
  install(FILES ${completion}/_tzm DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT tool)
endif()
if(TARGET tzm_manual)
  install(DIRECTORY ${PROJECT_BINARY_DIR}/tool/manual/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
endif()

# The documents as they stand in the tree, so that their links to each other hold, and the manual if it has been made.
if(PROJECT_IS_TOP_LEVEL)
  set(tzm_documents ${CMAKE_INSTALL_DATADIR}/doc/libsignal-tzm-doc)
  install(FILES README.md CHANGELOG.md CONTRIBUTING.md CITATION.cff LICENSE DESTINATION ${tzm_documents}
    COMPONENT documents)
  install(DIRECTORY docs DESTINATION ${tzm_documents} COMPONENT documents
    FILES_MATCHING PATTERN *.md PATTERN *.png PATTERN *.svg)
  install(DIRECTORY examples DESTINATION ${tzm_documents} COMPONENT documents
    FILES_MATCHING PATTERN *.c PATTERN *.cpp PATTERN *.h PATTERN *.py PATTERN CMakeLists.txt)
  install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html DESTINATION ${tzm_documents} COMPONENT documents OPTIONAL)
  install(CODE "set(tzm_pages \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${tzm_documents}\")" COMPONENT documents)
  install(CODE [[  # the manual's pictures are those of the pages
    file(GLOB pictures RELATIVE ${tzm_pages}/html ${tzm_pages}/html/*.png)
    foreach(picture IN LISTS pictures)
      if(EXISTS ${tzm_pages}/docs/gallery/${picture})
        file(CREATE_LINK ../docs/gallery/${picture} ${tzm_pages}/html/${picture} SYMBOLIC)
      endif()
    endforeach()]] COMPONENT documents)
  install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/man3 DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT documents OPTIONAL)
endif()

# tzm_all: what has to be built before it is installed.
add_custom_target(tzm_all)
foreach(target IN LISTS tzm_libraries tzm_wider_libraries ITEMS tzm tzm_python tzm_completion tzm_manual)
  if(TARGET ${target})
    add_dependencies(tzm_all ${target})
  endif()
endforeach()

# tzm_uninstall: takes away what the last installation from this build put into its prefix.
add_custom_target(tzm_uninstall VERBATIM
  COMMAND ${CMAKE_COMMAND} -P ${CMAKE_CURRENT_LIST_DIR}/uninstall.cmake ${PROJECT_BINARY_DIR})
