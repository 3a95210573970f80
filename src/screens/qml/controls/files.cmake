# QML files of this folder, and the C++ sources behind them (paths from src/screens).
set(controls_qml
    Theme.qml
)
set(controls_sources
)
