# One static library a folder of src/. A target sees the headers of a folder only when it links that
# folder's target: the include root of each is a directory that holds nothing but a link to it.

add_library(corvane_options INTERFACE)
target_compile_options(corvane_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # g++ 12 sees these where there are none, in std::optional and std::string of the standard library.
    target_compile_options(corvane_options INTERFACE -Wno-maybe-uninitialized -Wno-array-bounds -Wno-restrict
        -Wno-stringop-overflow)
endif()
target_compile_definitions(corvane_options INTERFACE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII)
# simdjson's on-demand parser is chosen at compile time, and its portable form is several times slower. The
# instructions asked for are those of every 64-bit processor since 2010, for all targets alike, since the parser
# stands in headers.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    target_compile_options(corvane_options INTERFACE -march=x86-64-v2 -mpclmul)
endif()
if(CORVANE_WERROR)
    target_compile_options(corvane_options INTERFACE -Werror)
endif()
if(CORVANE_SANITIZE)
    target_compile_options(corvane_options INTERFACE
        -fsanitize=${CORVANE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(corvane_options INTERFACE -fsanitize=${CORVANE_SANITIZE})
endif()

# corvane_library(NAME text LINKS icu... SOURCES a.cpp ...): the target is corvane_<NAME>.
function(corvane_library)
    cmake_parse_arguments(ARG "" "NAME" "LINKS;PRIVATE_LINKS;SOURCES" ${ARGN})
    set(target corvane_${ARG_NAME})
    set(include_root ${PROJECT_BINARY_DIR}/include-roots/${ARG_NAME})
    file(MAKE_DIRECTORY ${include_root})
    if(NOT EXISTS ${include_root}/${ARG_NAME})
        file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${include_root}/${ARG_NAME} SYMBOLIC)
    endif()
    add_library(${target} STATIC ${ARG_SOURCES})
    target_include_directories(${target} PUBLIC ${include_root})
    target_link_libraries(${target} PUBLIC corvane_options ${ARG_LINKS} PRIVATE ${ARG_PRIVATE_LINKS})
    target_precompile_headers(${target} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/standard_pch.h)
endfunction()

# corvane_test(NAME text LINKS corvane_text SOURCES a_test.cpp ...): one executable a folder of tests/.
function(corvane_test)
    cmake_parse_arguments(ARG "" "NAME;TIMEOUT" "LINKS;SOURCES" ${ARGN})
    set(target test_${ARG_NAME})
    add_executable(${target} ${ARG_SOURCES})
    target_link_libraries(${target} PRIVATE corvane_test_main corvane_test_support ${ARG_LINKS} GTest::gmock)
    target_precompile_headers(${target} PRIVATE
        ${PROJECT_SOURCE_DIR}/cmake/standard_pch.h <gtest/gtest.h> <gmock/gmock.h>)
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 300)
    endif()
    add_test(NAME ${ARG_NAME} COMMAND ${target})
    set_tests_properties(${ARG_NAME} PROPERTIES TIMEOUT ${ARG_TIMEOUT})
endfunction()
