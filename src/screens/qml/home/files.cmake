# QML files of this folder, and the C++ sources behind them (paths from src/screens).
set(home_qml
    HomePage.qml
)
set(home_sources
)
