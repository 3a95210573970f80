# What an installed Corvane is made of beside its worker, and its packages. Linux: the FreeDesktop folders and a .deb by CPack. macOS: a
# bundle, whose resources lie where the platform's list of resource folders looks for them.
include(GNUInstallDirs)

set(corvane_data ${CMAKE_INSTALL_DATADIR}/corvane)
set(corvane_programs corvane-cli)
if(CORVANE_WINDOW)
    list(APPEND corvane_programs corvane)
endif()

if(APPLE)
    set(corvane_data Corvane.app/Contents/Resources)
    set_target_properties(corvane PROPERTIES
        MACOSX_BUNDLE TRUE
        OUTPUT_NAME Corvane
        MACOSX_BUNDLE_INFO_PLIST ${PROJECT_SOURCE_DIR}/desktop/Info.plist.in
        MACOSX_BUNDLE_BUNDLE_NAME Corvane
        MACOSX_BUNDLE_GUI_IDENTIFIER app.corvane.Corvane
        MACOSX_BUNDLE_BUNDLE_VERSION ${PROJECT_VERSION}
        MACOSX_BUNDLE_SHORT_VERSION_STRING ${PROJECT_VERSION})
    install(TARGETS corvane BUNDLE DESTINATION .)
    install(TARGETS corvane-cli RUNTIME DESTINATION Corvane.app/Contents/MacOS)
else()
    install(TARGETS ${corvane_programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(PROGRAMS tools/make_sample_store.py DESTINATION ${corvane_data})
install(DIRECTORY tools/samplestore DESTINATION ${corvane_data} FILES_MATCHING PATTERN "*.py")

if(CORVANE_WINDOW AND NOT APPLE)
    install(FILES desktop/corvane.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
    install(FILES desktop/corvane.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
    set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
    install(FILES desktop/corvane.svg DESTINATION ${icons}/scalable/apps)
    foreach(size 16 24 32 48 64 128 256)
        install(FILES desktop/corvane-${size}.png DESTINATION ${icons}/${size}x${size}/apps RENAME corvane.png)
    endforeach()
endif()

set(CPACK_PACKAGE_NAME corvane)
set(CPACK_PACKAGE_VENDOR Corvane)
set(CPACK_PACKAGE_CONTACT "Corvane <corvane@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "archive of mail from Apple Mail, every message verified")
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION mail)
# The libraries are found in the programs; what they load or start at run time stands here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "sqlite3, python3")
if(CORVANE_WINDOW)
    string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS ", libqt6svg6, qt6-qpa-plugins, qml6-module-qtqml"
        ", qml6-module-qtqml-models, qml6-module-qtqml-workerscript, qml6-module-qtquick"
        ", qml6-module-qtquick-window, qml6-module-qtquick-templates, qml6-module-qtquick-layouts"
        ", qml6-module-qtquick-controls, qml6-module-qtquick-dialogs, qml6-module-qt-labs-folderlistmodel"
        ", fonts-noto-cjk | fonts-wqy-microhei | fonts-wqy-zenhei")
    set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland, qt6-translations-l10n, xdg-utils")
endif()
include(CPack)
