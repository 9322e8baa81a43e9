# What `cmake --install` puts below a prefix, what the target `uninstall` takes away again, and the Debian package that
# `cpack` makes of it.

set(JOYVANE_RELEASE_DATE 2026-11-22)
set(joyvane_packaging ${CMAKE_BINARY_DIR}/packaging)
set(joyvane_doc ${CMAKE_INSTALL_DATADIR}/doc/joyvane)

# Packaging looks at what it installs, and builds nothing: `ninja product` comes first.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

install(TARGETS joyvane-settings jvninput RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS joyvane_platform LIBRARY DESTINATION ${JOYVANE_PRIVATE_DIR} NAMELINK_SKIP)
install(TARGETS jvnd jvndiscovery jvninputd RUNTIME DESTINATION ${JOYVANE_PRIVATE_DIR})

# Units name their programs by the prefix, which may be another one at each installation; tests take what is below /usr.
function(joyvane_install_unit unit folder)
  set(JOYVANE_PROGRAMS /usr/${JOYVANE_PRIVATE_DIR})
  configure_file(packaging/${unit}.in ${joyvane_packaging}/${unit} @ONLY)
  install(CODE "
    set(JOYVANE_PROGRAMS \"\${CMAKE_INSTALL_PREFIX}/${JOYVANE_PRIVATE_DIR}\")
    set(unit \"\${CMAKE_INSTALL_PREFIX}/${folder}/${unit}\")
    configure_file(\"${CMAKE_SOURCE_DIR}/packaging/${unit}.in\" \"\$ENV{DESTDIR}\${unit}\" @ONLY)
    list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${unit}\")")
endfunction()
set(joyvane_user_units lib/systemd/user)
set(joyvane_system_units lib/systemd/system)
joyvane_install_unit(jvnd.service ${joyvane_user_units})
joyvane_install_unit(jvninputd.service ${joyvane_system_units})
install(FILES packaging/jvnd.socket DESTINATION ${joyvane_user_units})
install(FILES packaging/jvninputd.socket DESTINATION ${joyvane_system_units})
# The user's units are switched on for every user; the system's socket by the package, or by hand.
file(MAKE_DIRECTORY ${joyvane_packaging}/user)
foreach(wanted IN ITEMS sockets.target.wants/jvnd.socket default.target.wants/jvnd.service)
  cmake_path(GET wanted FILENAME unit)
  cmake_path(GET wanted PARENT_PATH target)
  file(CREATE_LINK ../${unit} ${joyvane_packaging}/user/${unit} SYMBOLIC)
  install(FILES ${joyvane_packaging}/user/${unit} DESTINATION ${joyvane_user_units}/${target})
endforeach()

# Compressed, as distributions want it: without the time and the name, so that the same text gives the same file.
function(joyvane_install_compressed file folder)
  cmake_path(GET file FILENAME name)
  set(compressed ${joyvane_packaging}/${name}.gz)
  add_custom_command(OUTPUT ${compressed} COMMAND gzip -9nc ${file} > ${compressed} DEPENDS ${file} VERBATIM)
  set_property(TARGET joyvane_package_files APPEND PROPERTY SOURCES ${compressed})
  install(FILES ${compressed} DESTINATION ${folder})
endfunction()
add_custom_target(joyvane_package_files ALL)
add_dependencies(product joyvane_package_files)
foreach(manual IN ITEMS joyvane-settings.1 jvninput.1 jvnd.8 jvndiscovery.8 jvninputd.8)
  cmake_path(GET manual EXTENSION section)
  string(REPLACE . man section ${section})
  configure_file(packaging/${manual} ${joyvane_packaging}/${manual} @ONLY)
  joyvane_install_compressed(${joyvane_packaging}/${manual} ${CMAKE_INSTALL_MANDIR}/${section})
endforeach()
joyvane_install_compressed(${CMAKE_SOURCE_DIR}/packaging/debian/changelog ${joyvane_doc})
install(FILES packaging/debian/copyright DESTINATION ${joyvane_doc})
install(FILES packaging/debian/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME joyvane)
foreach(program IN ITEMS joyvane-settings jvninput)
  install(FILES packaging/${program}.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${program})
endforeach()

# The guide, as a page that any browser shows.
find_program(JOYVANE_CMARK cmark-gfm REQUIRED)
set(guide ${joyvane_packaging}/user-guide.html)
add_custom_command(OUTPUT ${guide}
  COMMAND Python3::Interpreter ${CMAKE_SOURCE_DIR}/packaging/guide.py ${JOYVANE_CMARK}
    ${CMAKE_SOURCE_DIR}/docs/user-guide.md ${guide}
  DEPENDS ${CMAKE_SOURCE_DIR}/packaging/guide.py ${CMAKE_SOURCE_DIR}/docs/user-guide.md VERBATIM)
set_property(TARGET joyvane_package_files APPEND PROPERTY SOURCES ${guide})
install(FILES ${guide} DESTINATION ${joyvane_doc})
install(DIRECTORY docs/pictures DESTINATION ${joyvane_doc})

configure_file(packaging/com.quorrel.joyvane.metainfo.xml ${joyvane_packaging}/com.quorrel.joyvane.metainfo.xml @ONLY)
install(FILES packaging/com.quorrel.joyvane.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/com.quorrel.joyvane.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
# The same (rsvg-convert -w 128), for the window itself: the toolkit reads no SVG without a plugin.
install(FILES packaging/com.quorrel.joyvane.png DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/128x128/apps)
install(FILES ${joyvane_packaging}/com.quorrel.joyvane.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

add_custom_target(uninstall COMMAND ${CMAKE_COMMAND} -P ${CMAKE_SOURCE_DIR}/cmake/uninstall.cmake ${CMAKE_BINARY_DIR} VERBATIM)

file(READ packaging/debian/users AT_USERS)
foreach(script IN ITEMS postinst prerm postrm)
  configure_file(packaging/debian/${script}.in ${joyvane_packaging}/debian/${script} @ONLY
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  list(APPEND CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${joyvane_packaging}/debian/${script})
endforeach()
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME joyvane)
set(CPACK_PACKAGE_VENDOR Joyvane)
set(CPACK_PACKAGE_CONTACT "The Joyvane maintainers <maintainers@joyvane.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "set up game controllers, and play with a keyboard as one")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Lets games that want a gamepad be played with a keyboard, which becomes one, or
with a Bluetooth controller, which is paired, connected and lit from one page.
.
The page, the daemon of the user's session, the tool that pairs and the service
that reads keyboards are all in this package; they start when they are needed.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_CMAKE_PROJECTS "${CMAKE_BINARY_DIR};${PROJECT_NAME};ALL;/")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# Beside the libraries: fonts with key symbols, `gio`, who sits at the computer, windows without X11.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-dejavu-core, libglib2.0-bin, default-logind | logind, qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "dbus-user-session, at-spi2-core, bluez")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
include(CPack)
