# The QML files and the C++ sources of this folder.
set(space_qml
    SpaceAccountRow.qml
    SpacePage.qml
    SpaceSenderRow.qml
    SpaceSenders.qml
)
set(space_sources
    space_accounts_model.cpp
    space_chosen_account.h
    space_screen.cpp
    space_senders_model.cpp
)
