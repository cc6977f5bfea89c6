#!/usr/bin/env bash
# A page the shell refuses is deleted by the extension itself and its sheet handle is left as
# it is: the DLL never destroys a page handle. It does not even import the function that would
# (DestroyPropertySheetPage, A or W), while it does import the one that makes the handles, so
# the check cannot pass on an import table it failed to read.
set -euo pipefail
dll="$1"
tables=$(x86_64-w64-mingw32-objdump -p "$dll")
if ! grep -Eq '[[:space:]]CreatePropertySheetPageA$' <<<"$tables"; then
  echo "the import table does not name CreatePropertySheetPageA: not read"
  exit 1
fi
if grep -Eq '[[:space:]]DestroyPropertySheetPage[AW]?$' <<<"$tables"; then
  echo "the DLL imports DestroyPropertySheetPage"
  exit 1
fi
echo "page handles are made (CreatePropertySheetPageA) and never destroyed"
