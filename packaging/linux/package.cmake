# What an installation holds. The program finds its shipped files in the share folder beside its own and keeps its state in
# the user's data folder. packaging/linux/build makes a Debian package of it.
include(GNUInstallDirs)

install(TARGETS qrvv3rc QRVV3Updater RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY assets/shipped/ DESTINATION ${CMAKE_INSTALL_DATADIR}/qrvv3rc PATTERN icons EXCLUDE)
install(FILES assets/qrvv3rc.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
foreach(size 16 24 32 48 64 128 256)
    install(FILES assets/shipped/icons/qrvv3rc-${size}.png RENAME qrvv3rc.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()
install(FILES assets/shipped/icons/qrvv3rc.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)

string(TIMESTAMP QRVRC_DATE "%Y-%m-%d" UTC) # of SOURCE_DATE_EPOCH where that is set
set(written ${CMAKE_CURRENT_BINARY_DIR}/linux)
set(id example.maker.qrvv3rc)
configure_file(packaging/linux/metainfo.xml.in ${written}/${id}.metainfo.xml @ONLY)
install(FILES ${written}/${id}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

set(VERSION ${PROJECT_VERSION})
set(programs qrvv3rc QRVV3Updater)
if(TARGET qrvrc-practice)
    install(TARGETS qrvrc-practice RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    list(APPEND programs qrvrc-practice)
endif()
foreach(program ${programs})
    configure_file(packaging/linux/man/${program}.1 ${written}/${program}.1 @ONLY)
    install(FILES ${written}/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES packaging/linux/completion.bash RENAME ${program}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endforeach()
