#!/usr/bin/env bash
# Fails when the DLL lacks an entry point (plain or with a leading underscore), its export
# table names another file, it imports anything but a system DLL (a MinGW runtime DLL, for
# example), or it has grown past its size limit. For both DLLs: vqcprop64.dll is a PE32+
# image for x64, vqcprop32.dll a PE32 image for i386 (objdump reads both).
set -euo pipefail
dll="$1"
dll_file=$(basename "$dll")
tables=$(x86_64-w64-mingw32-objdump -p "$dll")
status=0
# 480 KB, stripped as built.
limit=491520

case "$dll_file" in
  vqcprop64.dll) format=pei-x86-64 ;;
  vqcprop32.dll) format=pei-i386 ;;
  *) echo "not one of the two DLLs: $dll_file"; exit 1 ;;
esac
if ! grep -Eq "file format $format\$" <<<"$tables"; then
  echo "$dll_file is not a $format image: $(grep -m1 'file format' <<<"$tables")"
  status=1
fi

for name in DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer; do
  for exported in "$name" "_$name"; do
    if ! grep -Eq "^[[:space:]]*\[[[:space:]]*[0-9]+\][[:space:]]+$exported\$" <<<"$tables"; then
      echo "missing export: $exported"
      status=1
    fi
  done
done

if ! grep -Eq "^Name[[:space:]]+[0-9a-f]+ ${dll_file//./\\.}\$" <<<"$tables"; then
  echo "the export table does not name $dll_file"
  status=1
fi

size=$(stat -c %s "$dll")
if [ "$size" -ge "$limit" ]; then
  echo "$dll_file is $size bytes, the limit is $limit"
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

[ $status -eq 0 ] && echo "$dll_file ($format, $size bytes): exports complete; imports: $(echo $imports)"
exit $status
