# Compiles for macOS on another system, as far as headers go: nothing is linked. scripts/check-macos names the folders.
#   CORVANE_DARWIN_HEADERS   the C headers of macOS
#   CORVANE_LIBRARY_HEADERS  links to the headers of the libraries, without those of this system's own C library
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 23)
if(NOT CMAKE_SYSTEM_PROCESSOR)
    set(CMAKE_SYSTEM_PROCESSOR arm64)
endif()
set(CMAKE_OSX_SYSROOT "" CACHE STRING "" FORCE)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CMAKE_SYSTEM_PROCESSOR CORVANE_DARWIN_HEADERS CORVANE_LIBRARY_HEADERS)

foreach(language C CXX OBJCXX)
    set(CMAKE_${language}_COMPILER_TARGET ${CMAKE_SYSTEM_PROCESSOR}-apple-macos14)
endforeach()
set(CMAKE_C_COMPILER /usr/bin/clang-19)
set(CMAKE_CXX_COMPILER /usr/bin/clang++-19)
set(CMAKE_OBJCXX_COMPILER /usr/bin/clang++-19)
set(CMAKE_AR /usr/bin/llvm-ar-19)
set(CMAKE_RANLIB /usr/bin/llvm-ranlib-19)
set(CMAKE_INSTALL_NAME_TOOL /usr/bin/llvm-install-name-tool-19)

set(darwin_flags "-nostdlibinc -isystem ${CORVANE_DARWIN_HEADERS}")
set(library_flags "-nostdinc++ -isystem /usr/lib/llvm-19/include/c++/v1 ${darwin_flags} -isystem ${CORVANE_LIBRARY_HEADERS}")
set(CMAKE_C_FLAGS_INIT "${darwin_flags}")
# Without its time a precompiled header is the same each time that it is made, which ccache needs.
set(CMAKE_CXX_FLAGS_INIT "${library_flags} -Xclang -fno-pch-timestamp")
set(CMAKE_OBJCXX_FLAGS_INIT "${library_flags}")

# The libraries themselves are this system's; only their headers count.
set(CMAKE_PROJECT_Corvane_INCLUDE ${CMAKE_CURRENT_LIST_DIR}/MacosCheckProject.cmake)
