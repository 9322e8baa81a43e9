# joyvane_bundle(<name> MANIFEST <Info.plist> [SOURCES <files...>] [OBJECTS_OF <static library>]
#                [RESOURCES <files...>] [EXPORTS <list>] [INSTALL_TO <folder>])
# Makes lib/<name>.bundle/ in the build folder: the module (a file called <name>), the resources and the manifest, to
# which the module's size and digest are added. Targets: <name>_module and <name>_bundle (all of it).
# OBJECTS_OF takes every object of that library: nothing refers to a class that is only known by name, and an archive
# member that nothing refers to would be left out, its registration with it.
# The module exports the names in the file <list> (one a line, # for comments) and nothing else.
# INSTALL_TO is the folder below the prefix in which an installation puts the bundle.
function(joyvane_bundle name)
  cmake_parse_arguments(ARG "" "MANIFEST;EXPORTS;OBJECTS_OF;INSTALL_TO" "SOURCES;RESOURCES" ${ARGN})
  set(folder ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${name}.bundle)
  set(module ${name}_module)
  if(ARG_OBJECTS_OF)
    list(APPEND ARG_SOURCES $<TARGET_OBJECTS:${ARG_OBJECTS_OF}>)
  endif()

  set(exported "")
  if(ARG_EXPORTS)
    cmake_path(ABSOLUTE_PATH ARG_EXPORTS)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ARG_EXPORTS})
    file(STRINGS ${ARG_EXPORTS} names REGEX "^[A-Za-z_]")
    list(JOIN names "$<SEMICOLON> " names)
    set(exported "global: ${names}$<SEMICOLON> ")
  endif()
  set(version_script ${CMAKE_CURRENT_BINARY_DIR}/${name}.version)
  file(GENERATE OUTPUT ${version_script} CONTENT "{ ${exported}local: *$<SEMICOLON> }$<SEMICOLON>\n")

  add_library(${module} MODULE ${ARG_SOURCES} $<TARGET_OBJECTS:joyvane_module_note>)
  # No run path: whoever loads the module has the platform library already, and a file that an installation edits would
  # no longer have the digest in its manifest.
  set_target_properties(${module} PROPERTIES
    OUTPUT_NAME ${name} PREFIX "" SUFFIX "" LIBRARY_OUTPUT_DIRECTORY ${folder} LINKER_LANGUAGE CXX
    SKIP_BUILD_RPATH ON INSTALL_RPATH "" LINK_DEPENDS ${version_script})
  target_link_libraries(${module} PRIVATE joyvane_flags joyvane_platform)
  # The module calls its own functions, whatever else in the process has their names (crc32 is a library's, too).
  # It stays for the process's life: objects of its classes live until the end.
  # A name in the list that nothing defines is for the test of the exports to report, not for one linker out of two.
  target_link_options(${module} PRIVATE -Wl,-Bsymbolic -Wl,-z,nodelete -Wl,--version-script=${version_script} -Wl,--undefined-version)

  set(contents ${folder}/Info.plist)
  set(seal ${CMAKE_SOURCE_DIR}/cmake/seal_bundle.py)
  cmake_path(ABSOLUTE_PATH ARG_MANIFEST)
  add_custom_command(OUTPUT ${folder}/Info.plist
    COMMAND Python3::Interpreter ${seal} ${ARG_MANIFEST} $<TARGET_FILE:${module}> ${folder}/Info.plist
    DEPENDS ${ARG_MANIFEST} ${seal} ${module} VERBATIM)
  foreach(resource IN LISTS ARG_RESOURCES)
    set(source ${resource})
    cmake_path(ABSOLUTE_PATH source)
    add_custom_command(OUTPUT ${folder}/${resource}
      COMMAND ${CMAKE_COMMAND} -E copy ${source} ${folder}/${resource} DEPENDS ${source} VERBATIM)
    list(APPEND contents ${folder}/${resource})
  endforeach()
  add_custom_target(${name}_bundle ALL DEPENDS ${contents})

  if(ARG_INSTALL_TO)
    set(installed ${ARG_INSTALL_TO}/${name}.bundle)
    install(TARGETS ${module} LIBRARY DESTINATION ${installed})
    foreach(resource IN LISTS ARG_RESOURCES)
      cmake_path(GET resource PARENT_PATH inside)
      install(FILES ${resource} DESTINATION ${installed}/${inside})
    endforeach()
    # The manifest is sealed once more: stripping gives the module another size and digest.
    set(target "\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${installed}")
    install(CODE "execute_process(COMMAND_ERROR_IS_FATAL ANY COMMAND
      \"${Python3_EXECUTABLE}\" \"${seal}\" \"${ARG_MANIFEST}\" \"${target}/${name}\" \"${target}/Info.plist\")
      list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${CMAKE_INSTALL_PREFIX}/${installed}/Info.plist\")")
  endif()
endfunction()
