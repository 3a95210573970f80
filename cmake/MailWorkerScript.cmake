# The mail worker beside the programs: its sources, and their bytecode, which halves the time that a run takes to start.
# The interpreter takes bytecode only from its own version and only where its hash is that of the source beside it, so
# neither another Python nor an edited file runs anything else than the sources.
find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter)

set(worker_source ${PROJECT_SOURCE_DIR}/src/worker)
set(worker_copy ${PROJECT_BINARY_DIR}/bin)
set(worker_modules)
set(copy_packages)
foreach(package "" attachments bodies charsets html packed parts)
    file(GLOB modules CONFIGURE_DEPENDS ${worker_source}/corvane_mail/${package}/*.py)
    list(APPEND worker_modules ${modules})
    list(APPEND copy_packages
        COMMAND ${CMAKE_COMMAND} -E make_directory ${worker_copy}/corvane_mail/${package}
        COMMAND ${CMAKE_COMMAND} -E copy ${modules} ${worker_copy}/corvane_mail/${package})
endforeach()

add_custom_command(OUTPUT ${worker_copy}/corvane_mail/__pycache__/made
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${worker_copy}/corvane_mail
    COMMAND ${CMAKE_COMMAND} -E copy ${worker_source}/mail_worker.py ${worker_copy}
    ${copy_packages}
    COMMAND ${Python3_EXECUTABLE} -I -m compileall -q --invalidation-mode checked-hash ${worker_copy}/corvane_mail
    COMMAND ${CMAKE_COMMAND} -E touch ${worker_copy}/corvane_mail/__pycache__/made
    DEPENDS ${worker_source}/mail_worker.py ${worker_modules}
    COMMENT "Mail worker" VERBATIM)
add_custom_target(mail_worker_script ALL DEPENDS ${worker_copy}/corvane_mail/__pycache__/made)
