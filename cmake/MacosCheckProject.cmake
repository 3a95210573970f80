# What cmake/MacosCheckToolchain.cmake can only say once the compiler is known.
list(APPEND CMAKE_FIND_LIBRARY_SUFFIXES .so)
set(CMAKE_LIBRARY_ARCHITECTURE x86_64-linux-gnu)

# Never to be named on a command line: the headers of this system's C library lie there too.
enable_language(OBJCXX)
foreach(language CXX OBJCXX)
    list(APPEND CMAKE_${language}_IMPLICIT_INCLUDE_DIRECTORIES /usr/include)
endforeach()

# Qt asks for the framework of OpenGL.
if(NOT TARGET WrapOpenGL::WrapOpenGL)
    add_library(WrapOpenGL::WrapOpenGL INTERFACE IMPORTED)
endif()

# There are no libraries to link with. What of ours a program lacks is found by its symbols.
find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter)
foreach(language CXX OBJCXX)
    set(CMAKE_${language}_LINK_EXECUTABLE
        "${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/macos_check/check_symbols.py <TARGET> <OBJECTS> <LINK_LIBRARIES>")
endforeach()

# There is nothing in the objects then.
if(CORVANE_ONLY_READ)
    foreach(language CXX OBJCXX)
        set(CMAKE_${language}_COMPILER_LAUNCHER ${PROJECT_SOURCE_DIR}/tools/macos_check/only_read.sh)
        set(CMAKE_${language}_LINK_EXECUTABLE "${CMAKE_COMMAND} -E touch <TARGET>")
    endforeach()
endif()
