# The QML files and the C++ sources of this folder.
set(settings_qml
    BackupFolderSheet.qml
    BackupQuestion.qml
    BackupResult.qml
    SettingsSheets.qml
    collection/CollectionAccounts.qml
    collection/CollectionAddresses.qml
    collection/CollectionFrame.qml
    collection/CollectionPreview.qml
    collection/CollectionSheet.qml
)
set(settings_sources
    backup_file_choice.cpp
    settings_travel.cpp
    collection/address_collection.cpp
    collection/collection_rows_model.cpp
)
