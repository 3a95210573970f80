# QML files of this folder, and the C++ sources behind them (paths from src/screens).
set(home_qml
    HomePage.qml
)
set(home_sources
    account_shares_model.cpp
    destination_texts.cpp
    home_screen.cpp
    organize_data.cpp
    organize_sections.cpp
    organize_ticks.cpp
    organize_tree_model.cpp
    row_list_model.cpp
    safety_banner.cpp
    shown_figures.cpp
    year_series.cpp
)
