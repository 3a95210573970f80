# QML files of this folder, and the C++ sources behind them (paths from src/screens).
set(mails_qml
    MailListPage.qml
)
set(mails_sources
)
