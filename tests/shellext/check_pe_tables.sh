#!/usr/bin/env bash
# Fails when the DLL lacks an entry point (plain or with a leading underscore) or
# imports anything but a system DLL (a MinGW runtime DLL, for example).
set -euo pipefail
dll="$1"
tables=$(x86_64-w64-mingw32-objdump -p "$dll")
status=0

for name in DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer; do
  for exported in "$name" "_$name"; do
    if ! grep -Eq "^[[:space:]]*\[[[:space:]]*[0-9]+\][[:space:]]+$exported\$" <<<"$tables"; then
      echo "missing export: $exported"
      status=1
    fi
  done
done

if ! grep -Eq '^Name[[:space:]]+[0-9a-f]+ vqcprop64\.dll$' <<<"$tables"; then
  echo "the export table does not name vqcprop64.dll"
  status=1
fi

system='^(kernel32|user32|gdi32|advapi32|shell32|shlwapi|ole32|oleaut32|comctl32|comdlg32|version|msvcrt|secur32|ntdll|uxtheme)\.dll$'
imports=$(grep -E '^[[:space:]]*DLL Name:' <<<"$tables" | awk '{print $3}')
if [ -z "$imports" ]; then
  echo "no import table found"
  status=1
fi
for dll_name in $imports; do
  if ! tr 'A-Z' 'a-z' <<<"$dll_name" | grep -Eq "$system"; then
    echo "non-system import: $dll_name"
    status=1
  fi
done

[ $status -eq 0 ] && echo "exports complete; imports: $(echo $imports)"
exit $status
