# What `cmake --install build` puts where (default prefix /usr/local), and
# the .deb that `cpack -G DEB` in build/ makes of it (prefix /usr):
#   bin/scandeck, bin/scandeck-cli, bin/scandeck-sim
#   share/scandeck/ini/connect_type.ini   the settings file new operators start from
#   share/scandeck/qss/MacOS.qss          the style sheet
#   share/scandeck/scandeck_zh.qm         the Chinese texts
#   share/applications/scandeck.desktop   the menu entry
#   share/icons/hicolor/scalable/apps/scandeck.svg
# The paths under share/scandeck are those of build/; connect/ProgramFiles
# finds them from the program's folder.

install(TARGETS scandeck-cli scandeck-sim RUNTIME DESTINATION ${SCANDECK_INSTALL_BINDIR})
if(SCANDECK_GUI)
  install(TARGETS scandeck RUNTIME DESTINATION ${SCANDECK_INSTALL_BINDIR})
  install(FILES resources/ini/connect_type.ini DESTINATION ${SCANDECK_INSTALL_DATADIR}/ini)
  install(FILES resources/qss/MacOS.qss DESTINATION ${SCANDECK_INSTALL_DATADIR}/qss)
  install(FILES ${CMAKE_BINARY_DIR}/scandeck_zh.qm DESTINATION ${SCANDECK_INSTALL_DATADIR})
  install(FILES resources/scandeck.desktop DESTINATION share/applications)
  install(FILES resources/icons/Tern_2.svg DESTINATION share/icons/hicolor/scalable/apps RENAME scandeck.svg)
endif()

set(CPACK_PACKAGE_NAME scandeck)
set(CPACK_PACKAGE_VENDOR "ScanDeck")
set(CPACK_PACKAGE_CONTACT "ScanDeck maintainers <maintainers@scandeck.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Viewer for small single-plane rotating lidars")
set(CPACK_PACKAGE_DESCRIPTION
    "Connects to Tern and Wren lidars over UDP or a serial port, draws every revolution as a point cloud, records and plays back the raw stream and tcpdump captures, measures in the view and exports CSV, PCD, PLY and ROS bags. With scandeck-cli (convert, inspect and capture without a window) and scandeck-sim (a simulated lidar).")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)  # scandeck_<version>_<arch>.deb
set(CPACK_DEBIAN_PACKAGE_SECTION science)
# The shared libraries' packages come from dpkg-shlibdeps; these are read at
# run time without being linked: Qt's own Chinese texts and the font the
# Chinese interface is drawn in.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qttranslations5-l10n, fonts-wqy-microhei")
include(CPack)
