# The QML files and the C++ sources of this folder.
set(lists_qml
    AppScrollBar.qml
    FoundMark.qml
    ListRow.qml
    SelectableList.qml
    TableHead.qml
)
set(lists_sources
    list_selection.cpp
    message_lines.cpp
    message_list_model.cpp
    row_changes.cpp
    row_list_model.cpp
    row_ranges.cpp
)
