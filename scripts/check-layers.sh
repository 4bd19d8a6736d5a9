#!/usr/bin/env bash
# Checks that the layers only look down: vela includes nothing of lumo, and lumo's
# base includes nothing of io, util or net. Prints each offending line; exits 1 if any.
set -euo pipefail
cd "$(dirname "$0")/.."
status=0
check() {
    local what=$1 pattern=$2
    shift 2
    if grep -rnE "$pattern" "$@"; then
        echo "layering: $what" >&2
        status=1
    fi
}
check "vela must not include lumo" '#include [<"](lumo/|\.\./lumo)' include/vela src/vela
check "base must not include io, util or net" \
    '#include [<"](lumo/)?(io|util|net)/|#include "(\.\./)+(io|util|net)/' include/lumo/base src/lumo/base
check "util must not include net" '#include [<"](lumo/)?net/|#include "(\.\./)+net/' include/lumo/util src/lumo/util
check "io must not include net" '#include [<"](lumo/)?net/|#include "(\.\./)+net/' include/lumo/io src/lumo/io
exit $status
