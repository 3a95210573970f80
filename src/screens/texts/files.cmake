# The QML files and the C++ sources of this folder.
set(texts_sources
    archive_place.cpp
    attachment_symbol.cpp
    destination_item.cpp
    destination_texts.cpp
    message_trouble.cpp
    partial_mail.cpp
    proof_figures.cpp
    shown_figures.cpp
    shown_text.cpp
    text_lines.cpp
    text_marks.cpp
    window_places.cpp
)
