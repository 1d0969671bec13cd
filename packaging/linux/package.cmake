# What an installation holds, and the Debian package made of it. The program finds its shipped files in the share folder
# beside its own and keeps its state in the user's data folder.
include(GNUInstallDirs)

install(TARGETS qrvv3rc QRVV3Updater RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY assets/shipped/ DESTINATION ${CMAKE_INSTALL_DATADIR}/qrvv3rc PATTERN icons EXCLUDE)
install(FILES assets/qrvv3rc.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
foreach(size 16 24 32 48 64 128 256)
    install(FILES assets/shipped/icons/qrvv3rc-${size}.png RENAME qrvv3rc.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()
install(FILES assets/shipped/icons/qrvv3rc.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qrvv3rc)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "QRVRC <packages@maker.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "remote client of a game-server statistics tracker")
set(CPACK_PACKAGE_DESCRIPTION
    "The desktop client with which an administrator watches and steers game servers\nthrough the statistics tracker on their host.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-liberation2 | fonts-dejavu-core, qt6-wayland")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(CPack)
