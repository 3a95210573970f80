# QML files of this folder, and the C++ sources behind them (paths from src/screens).
set(archive_qml
)
set(archive_sources
)
