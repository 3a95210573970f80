# What an installed Corvane is made of, and its packages. Linux: the FreeDesktop folders and a .deb by CPack. macOS: a
# bundle, whose resources lie where the platform's list of resource folders looks for them.
include(GNUInstallDirs)

if(APPLE)
    set(corvane_data Corvane.app/Contents/Resources)
else()
    set(corvane_data ${CMAKE_INSTALL_DATADIR}/corvane)
endif()
install(FILES ${worker_copy}/mail_worker.py DESTINATION ${corvane_data})
install(DIRECTORY ${worker_copy}/corvane_mail DESTINATION ${corvane_data} PATTERN made EXCLUDE)
install(PROGRAMS tools/make_sample_store.py DESTINATION ${corvane_data})
install(DIRECTORY tools/samplestore DESTINATION ${corvane_data} FILES_MATCHING PATTERN "*.py")

# Completions and the manual page, as the program itself prints them.
set(usage_folder ${PROJECT_BINARY_DIR}/usage)
set(usage_files)
foreach(usage bash=corvane-cli.bash zsh=_corvane-cli fish=corvane-cli.fish man=corvane-cli.1)
    string(REPLACE "=" ";" usage ${usage})
    list(GET usage 0 kind)
    list(GET usage 1 file)
    add_custom_command(OUTPUT ${usage_folder}/${file}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${usage_folder}
        COMMAND corvane-cli --print ${kind} > ${usage_folder}/${file}
        DEPENDS corvane-cli)
    list(APPEND usage_files ${usage_folder}/${file})
endforeach()
# A program for another system can't print them here.
if(NOT CMAKE_CROSSCOMPILING)
    set(usage_in_all ALL)
endif()
add_custom_target(corvane-usage ${usage_in_all} DEPENDS ${usage_files})
if(APPLE)
    install(FILES ${usage_files} DESTINATION ${corvane_data}/usage)
else()
    install(FILES ${usage_folder}/corvane-cli.bash RENAME corvane-cli
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install(FILES ${usage_folder}/_corvane-cli DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
    install(FILES ${usage_folder}/corvane-cli.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
    install(FILES ${usage_folder}/corvane-cli.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

set(CPACK_PACKAGE_NAME corvane)
set(CPACK_PACKAGE_VENDOR Corvane)
set(CPACK_PACKAGE_CONTACT "Corvane <corvane@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "archive of mail from Apple Mail, every message verified")
set(CPACK_STRIP_FILES ON)

if(APPLE)
    if(CORVANE_WINDOW)
        include(cmake/MacosBundle.cmake)
        include(CPack)
    endif()
    return()
endif()

set(corvane_programs corvane-cli)
if(CORVANE_WINDOW)
    list(APPEND corvane_programs corvane)
endif()
install(TARGETS ${corvane_programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(CORVANE_WINDOW)
    # No program for people; the platform's list of resource folders has the place.
    install(TARGETS corvane-thumbnail RUNTIME DESTINATION libexec/corvane)
endif()

if(CORVANE_WINDOW)
    install(FILES desktop/corvane.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
    install(FILES desktop/corvane.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
    set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
    install(FILES desktop/corvane.svg DESTINATION ${icons}/scalable/apps)
    foreach(size 16 24 32 48 64 128 256)
        install(FILES desktop/corvane-${size}.png DESTINATION ${icons}/${size}x${size}/apps RENAME corvane.png)
    endforeach()
endif()

set(CPACK_CORVANE_SOURCE "${PROJECT_SOURCE_DIR}")
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/CheckPrograms.cmake")
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
