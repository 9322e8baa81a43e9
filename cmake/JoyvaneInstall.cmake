# What `cmake --install` puts below a prefix, and the Debian package that `cpack` makes of it.

set(JOYVANE_RELEASE_DATE 2026-11-21)

set_target_properties(joyvane_platform joyvane-settings PROPERTIES INSTALL_RPATH "$ORIGIN/../${JOYVANE_PRIVATE_DIR}:$ORIGIN")
install(TARGETS joyvane-settings RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS joyvane_platform LIBRARY DESTINATION ${JOYVANE_PRIVATE_DIR} NAMELINK_SKIP)

foreach(stand_in IN ITEMS jvnd jvndiscovery)
  if(TARGET ${stand_in})
    set_target_properties(${stand_in} PROPERTIES INSTALL_RPATH "$ORIGIN")
    install(TARGETS ${stand_in} RUNTIME DESTINATION ${JOYVANE_PRIVATE_DIR})
  endif()
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
