# What optimised builds, and so packages, are made of: checks that end the program where memory is about to be
# misused, addresses that can't be guessed, and no path of the machine that built them.
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)

set(optimised "$<AND:$<COMPILE_LANGUAGE:CXX,OBJCXX>,$<NOT:$<CONFIG:Debug>>>")

if(NOT CORVANE_SANITIZE)
    # Some distributions preset a lower level.
    target_compile_options(corvane_options INTERFACE "$<${optimised}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
    target_compile_definitions(corvane_options INTERFACE
        "$<${optimised}:_GLIBCXX_ASSERTIONS;_LIBCPP_HARDENING_MODE=_LIBCPP_HARDENING_MODE_FAST>")
    set(wanted -fstack-protector-strong -fstack-clash-protection)
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
        list(APPEND wanted -fcf-protection=full)
    elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64" AND NOT APPLE)
        list(APPEND wanted -mbranch-protection=standard)
    endif()
    foreach(flag ${wanted})
        string(MAKE_C_IDENTIFIER "CORVANE_HAS${flag}" known)
        check_cxx_compiler_flag("-Werror ${flag}" ${known})
        if(${known})
            target_compile_options(corvane_options INTERFACE "$<${optimised}:${flag}>")
        endif()
    endforeach()
    if(NOT APPLE)
        target_link_options(corvane_options INTERFACE "$<$<NOT:$<CONFIG:Debug>>:LINKER:-z,relro,-z,now>")
    endif()
endif()

# Where the compiler doesn't make programs that load anywhere by itself.
check_cxx_source_compiles("#ifndef __PIE__\n#error\n#endif\nint main() {}" CORVANE_PIE_BY_DEFAULT)
if(NOT CORVANE_PIE_BY_DEFAULT)
    include(CheckPIESupported)
    check_pie_supported(LANGUAGES CXX)
    set(CMAKE_POSITION_INDEPENDENT_CODE ON)
endif()

target_compile_options(corvane_options INTERFACE
    "$<${optimised}:-ffile-prefix-map=${PROJECT_BINARY_DIR}=build;-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>")
