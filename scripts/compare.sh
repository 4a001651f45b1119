# The check that the shell tests make: two whole texts compared.  Sourced
# by bash scripts, which start with failed=0 and end with "exit $failed".

# Compares the expected text ($2) with the actual one ($3) of the check
# named $1: prints "ok: NAME", or "FAIL: NAME" and the difference (expected
# <, actual >) and sets failed=1.
check() {
  if [ "$2" != "$3" ]; then
    echo "FAIL: $1"
    diff <(printf '%s\n' "$2") <(printf '%s\n' "$3") || true
    failed=1
  else
    echo "ok: $1"
  fi
}
