# The C++ sources of this folder.
set(overview_sources
    organize_data.cpp
)
