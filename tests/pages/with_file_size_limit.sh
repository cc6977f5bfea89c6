#!/usr/bin/env bash
# Runs one Windows test program as scripts/wine-run.sh does, with a limit on the size of
# every file the program writes, the way a volume that fills up stops a write:
#   with_file_size_limit.sh BYTES PREFIX PROGRAM [ARGS...]
# A write that would take a file past BYTES writes up to the limit and the next one fails
# (EFBIG, which Wine hands the program as a failed WriteFile). SIGXFSZ, which would end the
# process instead, is ignored. The program reads the limit from VQC_FILE_SIZE_LIMIT.
# The prefix's server writes the registry and must not inherit the limit: when none runs
# (a test started by hand), one is started here first, without it, and it ends a few seconds
# after its last program.
set -euo pipefail
limit=$1
prefix=$2
shift 2
root=$(cd "$(dirname "$0")/../.." && pwd)
WINEPREFIX="$prefix" wineserver -p5 </dev/null >/dev/null 2>&1 || true
trap '' XFSZ
export VQC_FILE_SIZE_LIMIT="$limit"
exec prlimit --fsize="$limit" -- "$root/scripts/wine-run.sh" "$prefix" "$@"
