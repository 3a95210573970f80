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

# The program in the bundle looks for them there, also before it is installed.
set(contents $<TARGET_BUNDLE_CONTENT_DIR:corvane>)
add_custom_target(corvane_bundle_parts
    COMMAND ${CMAKE_COMMAND} -E make_directory ${contents}/Resources ${contents}/MacOS
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${worker_copy}/mail_worker.py ${contents}/Resources
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${contents}/Resources/corvane_mail
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${worker_copy}/corvane_mail ${contents}/Resources/corvane_mail
    COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:corvane-thumbnail> ${contents}/MacOS
    VERBATIM)
add_dependencies(corvane_bundle_parts mail_worker_script corvane-thumbnail)
add_dependencies(corvane corvane_bundle_parts)

install(TARGETS corvane BUNDLE DESTINATION .)
install(TARGETS corvane-cli corvane-thumbnail RUNTIME DESTINATION Corvane.app/Contents/MacOS)
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
