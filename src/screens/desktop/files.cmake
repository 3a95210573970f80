# The C++ sources of this folder.
set(desktop_sources
    access_actions.cpp
    desktop_actions.cpp
)
