# QML files of this folder, and the C++ sources behind them (paths from src/screens).
set(shell_qml
    ContentView.qml
    Main.qml
    ScreenPage.qml
    SidebarItem.qml
)
set(shell_sources
)
