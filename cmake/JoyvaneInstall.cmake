# What `cmake --install` puts below a prefix, and the Debian package that `cpack` makes of it.

set(JOYVANE_RELEASE_DATE 2026-11-21)

install(TARGETS joyvane-settings RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS joyvane_platform LIBRARY DESTINATION ${JOYVANE_PRIVATE_DIR} NAMELINK_SKIP)

install(TARGETS jvnd jvndiscovery RUNTIME DESTINATION ${JOYVANE_PRIVATE_DIR})

# The daemon of a user's session: its units, switched on for every user where the system's package manager has them.
set(JOYVANE_USER_UNITS lib/systemd/user)
configure_file(packaging/jvnd.service.in ${CMAKE_BINARY_DIR}/packaging/jvnd.service @ONLY)
install(FILES packaging/jvnd.socket ${CMAKE_BINARY_DIR}/packaging/jvnd.service DESTINATION ${JOYVANE_USER_UNITS})
foreach(wanted IN ITEMS sockets.target.wants/jvnd.socket default.target.wants/jvnd.service)
  get_filename_component(unit ${wanted} NAME)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/packaging/user)
  file(CREATE_LINK ../${unit} ${CMAKE_BINARY_DIR}/packaging/user/${unit} SYMBOLIC)
  cmake_path(GET wanted PARENT_PATH target)
  install(FILES ${CMAKE_BINARY_DIR}/packaging/user/${unit} DESTINATION ${JOYVANE_USER_UNITS}/${target})
endforeach()
foreach(manual IN ITEMS jvnd.8 jvndiscovery.8)
  configure_file(packaging/${manual} ${CMAKE_BINARY_DIR}/packaging/${manual} @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/packaging/${manual} DESTINATION ${CMAKE_INSTALL_MANDIR}/man8)
endforeach()

foreach(file IN ITEMS com.quorrel.joyvane.metainfo.xml joyvane-settings.1)
  configure_file(packaging/${file} ${CMAKE_BINARY_DIR}/packaging/${file} @ONLY)
endforeach()
install(FILES packaging/com.quorrel.joyvane.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/com.quorrel.joyvane.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${CMAKE_BINARY_DIR}/packaging/com.quorrel.joyvane.metainfo.xml
  DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${CMAKE_BINARY_DIR}/packaging/joyvane-settings.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES packaging/joyvane-settings.bash
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME joyvane-settings)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/joyvane RENAME copyright)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME joyvane)
set(CPACK_PACKAGE_VENDOR Joyvane)
set(CPACK_PACKAGE_CONTACT "The Joyvane maintainers <maintainers@joyvane.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Settings page of a game-controller add-on")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_CMAKE_PROJECTS "${CMAKE_BINARY_DIR};${PROJECT_NAME};ALL;/")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "dbus-user-session, at-spi2-core")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
include(CPack)
