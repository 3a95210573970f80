# The QML files and the C++ sources of this folder.
set(places_qml
    PlaceReportBox.qml
    PlaceRowItem.qml
    PlacesSheet.qml
)
set(places_sources
    place_report.cpp
    place_rows_model.cpp
    places_screen.cpp
)
