# Corvane.app: the window, corvane-cli beside it, Qt and the libraries, the worker, signed; and a disk image by CPack.
#   CORVANE_SIGNING_IDENTITY   "-" signs ad hoc: the permission for the disk then has to be given again after each build
#   CORVANE_PYTHON_RUNTIME     a folder with a relocatable Python 3 (bin/python3) to be bundled; empty: one is looked for
set(CORVANE_SIGNING_IDENTITY "-" CACHE STRING "Identity for codesign")
set(CORVANE_PYTHON_RUNTIME "" CACHE PATH "Python runtime to bundle")

set(resources ${PROJECT_SOURCE_DIR}/desktop/corvane.icns)
set_source_files_properties(${resources} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
foreach(language zh-Hans)
    set(strings ${PROJECT_SOURCE_DIR}/desktop/${language}.lproj/InfoPlist.strings)
    set_source_files_properties(${strings} PROPERTIES MACOSX_PACKAGE_LOCATION Resources/${language}.lproj)
    list(APPEND resources ${strings})
endforeach()
target_sources(corvane PRIVATE ${resources})
set_target_properties(corvane PROPERTIES
    MACOSX_BUNDLE TRUE
    OUTPUT_NAME Corvane
    MACOSX_BUNDLE_INFO_PLIST ${PROJECT_SOURCE_DIR}/desktop/Info.plist.in
    MACOSX_BUNDLE_BUNDLE_NAME Corvane
    MACOSX_BUNDLE_ICON_FILE corvane.icns
    MACOSX_BUNDLE_GUI_IDENTIFIER app.corvane.Corvane
    MACOSX_BUNDLE_BUNDLE_VERSION ${PROJECT_VERSION}
    MACOSX_BUNDLE_SHORT_VERSION_STRING ${PROJECT_VERSION})

install(TARGETS corvane BUNDLE DESTINATION .)
install(TARGETS corvane-cli corvane-thumbnail RUNTIME DESTINATION Corvane.app/Contents/MacOS)
# Qt's own texts, which the entries of the application menu are among.
find_file(qt_chinese qtbase_zh_CN.qm PATHS ${Qt6_DIR}/../../.. PATH_SUFFIXES translations share/qt/translations)
if(qt_chinese)
    install(FILES ${qt_chinese} DESTINATION ${corvane_data}/translations)
endif()
if(CORVANE_PYTHON_RUNTIME)
    install(DIRECTORY ${CORVANE_PYTHON_RUNTIME}/ DESTINATION ${corvane_data}/PythonRuntime USE_SOURCE_PERMISSIONS)
else()
    install(CODE "message(STATUS \"No Python runtime is bundled; Corvane looks for one on the Mac (docs/macos.md)\")")
endif()
# Last: a signature covers all that is in the bundle.
install(CODE "
    execute_process(COMMAND ${PROJECT_SOURCE_DIR}/scripts/finish-bundle \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/Corvane.app\"
        ${PROJECT_SOURCE_DIR} \"${CORVANE_SIGNING_IDENTITY}\" COMMAND_ERROR_IS_FATAL ANY)")

set(CPACK_GENERATOR DragNDrop)
set(CPACK_DMG_VOLUME_NAME Corvane)
set(CPACK_PACKAGE_FILE_NAME Corvane-${PROJECT_VERSION}-${CMAKE_SYSTEM_PROCESSOR})
