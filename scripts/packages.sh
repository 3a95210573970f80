#!/usr/bin/env bash
# The one list of Debian packages, by what needs them. Prints the names for the given groups.
set -euo pipefail

build=(g++ cmake ninja-build pkg-config git ca-certificates
    qt6-base-dev libicu-dev libsqlite3-dev libsimdjson-dev rapidjson-dev libcli11-dev libtbb-dev libfmt-dev)
run=(sqlite3 python3)
tests=(libgtest-dev libgmock-dev)
checks=(clang-format-19 clang-tidy-19 clang-19 libclang-rt-19-dev lld-19)

for group in "$@"; do
    declare -n packages=$group
    printf '%s\n' "${packages[@]}"
done
