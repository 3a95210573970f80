# What a build for macOS needs to know: where Homebrew keeps what it hides from other builds, and whether the standard
# library has stop tokens.
include(CheckCXXSourceCompiles)

if(CMAKE_HOST_APPLE)
    find_program(HOMEBREW brew PATHS /opt/homebrew/bin /usr/local/bin)
    if(HOMEBREW)
        # The last one is that of everything that isn't hidden; "qt" is many formulas, all linked there.
        foreach(formula icu4c libarchive "")
            execute_process(COMMAND ${HOMEBREW} --prefix ${formula} OUTPUT_VARIABLE prefix
                OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
            if(prefix AND EXISTS ${prefix})
                list(APPEND CMAKE_PREFIX_PATH ${prefix})
                set(ENV{PKG_CONFIG_PATH} "${prefix}/lib/pkgconfig:$ENV{PKG_CONFIG_PATH}")
            endif()
        endforeach()
    endif()
    # Homebrew's clang brings headers of a newer standard library than the system's, and the library that goes with them.
    cmake_path(GET CMAKE_CXX_COMPILER PARENT_PATH compiler_folder)
    cmake_path(SET own_library NORMALIZE ${compiler_folder}/../lib/c++)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND EXISTS ${own_library})
        add_link_options(-L${own_library} -Wl,-rpath,${own_library})
    endif()
    # Homebrew has the newest of everything only: what a compiler or Qt has learnt to warn of since is shown, and ends
    # no build. Where versions are fixed, warnings are errors.
    target_compile_options(corvane_options INTERFACE -Wno-error)
    target_compile_definitions(corvane_options INTERFACE QT_WARN_DEPRECATED_UP_TO=0x060400)
endif()

# Plain in libc++ from LLVM 20 on; up to 19 they are among what it calls experimental.
set(stop_token_source "#include <stop_token>
#include <thread>
int main() { std::jthread thread([] {}); return thread.get_stop_token().stop_requested() ? 1 : 0; }")
check_cxx_source_compiles("${stop_token_source}" CORVANE_STOP_TOKENS)
if(NOT CORVANE_STOP_TOKENS)
    set(CMAKE_REQUIRED_FLAGS -fexperimental-library)
    check_cxx_source_compiles("${stop_token_source}" CORVANE_EXPERIMENTAL_STOP_TOKENS)
    unset(CMAKE_REQUIRED_FLAGS)
    if(NOT CORVANE_EXPERIMENTAL_STOP_TOKENS)
        message(FATAL_ERROR "This compiler's standard library has no std::stop_token. Homebrew's LLVM has it "
            "(brew install llvm; scripts/build chooses it by itself).")
    endif()
    add_compile_options($<$<COMPILE_LANGUAGE:CXX,OBJCXX>:-fexperimental-library>)
    add_link_options(-fexperimental-library)
endif()
