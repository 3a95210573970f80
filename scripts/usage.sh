# Sourced by the other scripts. Their first step is  check_options "--an-option --another" "$@"  with the options that they
# know beside --help and -h. These print the head of the script, and an option that isn't known is an error; either ends
# it.

script_head() {
    awk 'NR > 1 { if (!/^#/) exit; sub(/^# ?/, ""); print }' "$0"
}

wrong_use() {
    { echo "${0##*/}：$1"; script_head; } >&2
    exit 2
}

check_options() {
    local argument known=" $1 "
    shift
    for argument in "$@"; do
        case $argument in
            --help | -h) script_head; exit 0 ;;
            -?*) [ "$known" != "${known/ ${argument%%=*} /}" ] || wrong_use "没有选项 $argument" ;;
        esac
    done
}
