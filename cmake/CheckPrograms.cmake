# Run by CPack before it packs: nothing is packed that isn't hardened.
file(GLOB_RECURSE programs "${CPACK_TEMPORARY_DIRECTORY}/*/bin/*"
    "${CPACK_TEMPORARY_DIRECTORY}/*/libexec/corvane/*")
execute_process(COMMAND "${CPACK_CORVANE_SOURCE}/tools/check_programs.py" "${CPACK_CORVANE_SOURCE}" ${programs}
    RESULT_VARIABLE failed ERROR_VARIABLE faults)
if(NOT programs OR failed)
    message(FATAL_ERROR "No package is made of these programs:\n${faults}")
endif()
