# QML files of this folder, and the C++ sources behind them (paths from src/screens).
set(archive_qml
)
set(archive_sources
    archive_candidates_model.cpp
    archive_progress.cpp
    archive_result.cpp
    archive_screen.cpp
    archive_texts.cpp
    quick_destinations.cpp
    run_pace.cpp
)
