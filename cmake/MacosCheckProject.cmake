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

# What most sources of a target include is read once a target, since most of the time goes to that. That each source
# names what it needs, the other builds and tools/check_includes.py see.
function(precompile_more_headers)
    set(of_records <records/mail_message_record.h> <records/archived/archive_records.h>)
    set(of_model <QObject> <model/corvane_view_model.h>)
    foreach(target mailstore archive listing library locations)
        target_precompile_headers(corvane_${target} PRIVATE ${of_records})
    endforeach()
    target_precompile_headers(corvane_model PRIVATE <QObject> <model/model_context.h> <model/tasks/task_slot.h>)
    foreach(target corvane_screens corvane_app corvane_cli test_model test_screens_shell test_screens_home
            test_screens_archive test_screens_mails)
        if(TARGET ${target})
            target_precompile_headers(${target} PRIVATE ${of_model})
        endif()
    endforeach()
endfunction()
cmake_language(DEFER DIRECTORY ${PROJECT_SOURCE_DIR} CALL precompile_more_headers)
