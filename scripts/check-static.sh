#!/usr/bin/env bash
# Static checks of the filter and its library: clang-tidy with the checked-in
# .clang-tidy (warnings are errors) and cppcheck.  Exits non-zero on any
# finding.
# Usage: scripts/check-static.sh
set -euo pipefail
cd "$(dirname "$0")/.."
dir=build-hstatic
sources=(debug/*.cc status/*.cc report/*.cc link/*.cc filter/*.cc)

start=$(date +%s)
# clang-tidy needs the compile commands of a configured tree.
cmake -S . -B "$dir" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DBUILD_TESTING=OFF >/dev/null

failed=0
tidy_log="$dir/clang-tidy.log"
if clang-tidy -p "$dir" --quiet "${sources[@]}" >"$tidy_log" 2>&1; then
  tidy_status=0
else
  tidy_status=$?
fi
tidy_findings=$(grep -cE '^[^ ].*: (warning|error): ' "$tidy_log" || true)
if [ "$tidy_status" -ne 0 ] || [ "$tidy_findings" -ne 0 ]; then
  grep -E ': (warning|error): ' "$tidy_log" || tail -20 "$tidy_log"
  failed=1
fi
tidy_done=$(date +%s)
echo "check-static: clang-tidy: ${#sources[@]} files, $tidy_findings findings, $((tidy_done - start)) s"

# cppcheck's suppressions, with the reason:
#   missingIncludeSystem  the system and libcups headers are not analysed.
#   useStlAlgorithm       the table lookups are plain loops on purpose.
#   uninitvar in report/report_printer_levels.cc
#                         a false positive of cppcheck 2.10: it reads the
#                         braced uint32_t{...} widening in the level's
#                         computation as a use of the level itself, which
#                         every branch assigns before it is printed.
cppcheck_log="$dir/cppcheck.log"
cppcheck_status=0
cppcheck --quiet --enable=warning,style,performance,portability \
    --std=c++17 --language=c++ --error-exitcode=1 --inline-suppr -I . \
    --suppress=missingIncludeSystem --suppress=useStlAlgorithm \
    --suppress=uninitvar:report/report_printer_levels.cc \
    "${sources[@]}" >"$cppcheck_log" 2>&1 || cppcheck_status=$?
cppcheck_findings=$(grep -cE '^[^ ].*: (error|warning|style|performance|portability): ' "$cppcheck_log" || true)
if [ "$cppcheck_status" -ne 0 ] || [ "$cppcheck_findings" -ne 0 ]; then
  cat "$cppcheck_log"
  failed=1
fi
end=$(date +%s)
echo "check-static: cppcheck: ${#sources[@]} files, $cppcheck_findings findings, $((end - tidy_done)) s"

if [ "$failed" -ne 0 ]; then
  echo "check-static: FAILED"
  exit 1
fi
echo "check-static: OK"
