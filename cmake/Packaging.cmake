# Debian packages of the client (quorvel) and the server (quorvel-server): in the build folder,
#   cpack -G DEB
# The programs install with the components "client" and "server"; this adds the desktop entry,
# icon, AppStream metainfo and the pkexec policy of the updater to the client, and the systemd
# unit with its user and state folder to the server.
set(packaging ${CMAKE_SOURCE_DIR}/packaging)
install(FILES ${packaging}/org.quorvel.Quorvel.desktop DESTINATION share/applications
        COMPONENT client)
install(FILES ${packaging}/org.quorvel.Quorvel.metainfo.xml DESTINATION share/metainfo
        COMPONENT client)
install(FILES ${CMAKE_SOURCE_DIR}/src/client/ui/icons/small10.svg
        DESTINATION share/icons/hicolor/scalable/apps RENAME quorvel.svg COMPONENT client)
install(FILES ${packaging}/org.quorvel.update.policy DESTINATION share/polkit-1/actions
        COMPONENT client)
# Debian wants each package's changelog compressed, without a time stamp.
execute_process(COMMAND gzip -9nc ${packaging}/changelog
                OUTPUT_FILE ${CMAKE_BINARY_DIR}/changelog.gz COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${packaging}/changelog)
install(FILES ${packaging}/copyright ${CMAKE_BINARY_DIR}/changelog.gz
        DESTINATION share/doc/quorvel COMPONENT client)
install(FILES ${packaging}/quorvel-server.service DESTINATION lib/systemd/system
        COMPONENT server)
install(FILES ${packaging}/copyright ${CMAKE_BINARY_DIR}/changelog.gz
        DESTINATION share/doc/quorvel-server COMPONENT server)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quorvel)
set(CPACK_PACKAGE_VENDOR "The QUORVEL developers")
set(CPACK_PACKAGE_CONTACT "The QUORVEL developers <maintainers@quorvel.org>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL client server)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://quorvel.org/)

set(CPACK_DEBIAN_CLIENT_PACKAGE_NAME quorvel)
set(CPACK_COMPONENT_CLIENT_DESCRIPTION
    "Lobby for Rogue Spear and Black Ops players\nPlayers log in to a QUORVEL lobby server, chat, open rooms and start their\ngames together; the client follows the running game and updates itself.")
# Qt's plugins (display, images, SVG icons) are loaded at run time: no library names them.
set(CPACK_DEBIAN_CLIENT_PACKAGE_DEPENDS "qt6-qpa-plugins, qt6-image-formats-plugins, libqt6svg6")
set(CPACK_DEBIAN_CLIENT_PACKAGE_RECOMMENDS "pkexec | policykit-1, wine")

set(CPACK_DEBIAN_SERVER_PACKAGE_NAME quorvel-server)
set(CPACK_COMPONENT_SERVER_DESCRIPTION
    "Lobby server for QUORVEL clients\nThe lobby of players, chat, rooms and statistics, with its web pages and the\nclient download, run by systemd as the user quorvel-server.")
set(CPACK_DEBIAN_SERVER_PACKAGE_DEPENDS "libqt6sql6-sqlite, adduser")
set(CPACK_DEBIAN_SERVER_PACKAGE_CONTROL_EXTRA
    ${packaging}/server-scripts/postinst;${packaging}/server-scripts/prerm;${packaging}/server-scripts/postrm)
set(CPACK_DEBIAN_SERVER_PACKAGE_CONTROL_STRICT_PERMISSION ON)

include(CPack)
