#!/bin/sh
# Runs the compiler that its arguments call, without making an object: the file is an empty one. Precompiled headers are
# made.
for argument; do
    [ "$argument" = -emit-pch ] && exec "$@"
    [ "${last:-}" = -o ] && object=$argument
    last=$argument
done
"$@" -fsyntax-only && : >"$object"
