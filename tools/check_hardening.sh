#!/usr/bin/env bash
# Whether a program was linked with the guards that releases have: check_hardening.sh PROGRAM. Prints what is missing;
# exit status 1 then.
set -euo pipefail
program=$1
missing=()
readelf -h "$program" | grep -q 'Type:.*DYN' || missing+=("position independence")
readelf -lW "$program" | grep -q GNU_RELRO || missing+=("read-only relocations")
readelf -dW "$program" | grep -q 'NOW' || missing+=("binding at the start")
readelf -lW "$program" | grep GNU_STACK | grep -q 'RWE' && missing+=("a stack without code")
# A symbol table of megabytes: grep reads all of it, so that readelf meets no closed pipe.
readelf -sW "$program" | grep -c '__stack_chk_fail' >/dev/null || missing+=("stack guards")
readelf -sW "$program" | grep -c '_chk@' >/dev/null || missing+=("checked library calls")
if [ ${#missing[@]} -gt 0 ]; then
    printf '%s lacks: %s\n' "$program" "$(IFS=,; echo "${missing[*]}")"
    exit 1
fi
echo "all guards are in"
