#!/usr/bin/env bash
# The one list of packages, by system and by what needs them: Debian's, and on a Mac Homebrew's. Prints the names for
# the given groups.
set -euo pipefail
. "$(dirname "$0")/usage.sh"
check_options "" "$@"

build=(g++ cmake ninja-build pkg-config git ca-certificates
    qt6-base-dev libicu-dev libsqlite3-dev libsimdjson-dev rapidjson-dev libcli11-dev libtbb-dev libfmt-dev
    libmount-dev libssl-dev libarchive-dev)
window=(qt6-declarative-dev qt6-declarative-dev-tools qml6-module-qtqml qml6-module-qtqml-models
    qml6-module-qtqml-workerscript qml6-module-qtquick qml6-module-qtquick-window qml6-module-qtquick-templates
    qml6-module-qtquick-controls qml6-module-qtquick-layouts qml6-module-qtquick-dialogs
    qml6-module-qt-labs-folderlistmodel libqt6svg6 qt6-qpa-plugins qt6-translations-l10n fonts-noto-cjk)
run=(sqlite3 python3)
tests=(libgtest-dev libgmock-dev qml6-module-qttest xvfb xauth xdotool)
checks=(clang-format-19 clang-tidy-19 clang-19 libclang-rt-19-dev lld-19 ccache libc++-19-dev llvm-19)
headers=(npm) # where no npm is there already

if [ "$(uname)" = Darwin ]; then
    # SQLite, its shell and a Python are the system's; Qt comes whole.
    build=(llvm cmake ninja pkgconf qt icu4c simdjson rapidjson cli11 tbb fmt libarchive)
    window=("")
    run=(python3) # the newest: only that one is linked under this name
    tests=(googletest)
    checks=("")
    headers=("")
fi

for group in "$@"; do
    # Not by a reference: the shell of a Mac is that old.
    members="$group[@]"
    printf '%s\n' "${!members}"
done
