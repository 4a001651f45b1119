#!/usr/bin/env bash
# Static checks of the filter, its library and the admin's command:
# clang-tidy with the checked-in .clang-tidy (warnings are errors) and
# cppcheck.  Exits non-zero on any
# finding.
# Usage: scripts/check-static.sh
source "$(dirname "$0")/lib.sh"
dir=build-hstatic
sources=(debug/*.cc status/*.cc report/*.cc link/*.cc filter/*.cc admin/*.cc)

start=$(date +%s)
# clang-tidy needs the compile commands of a configured tree.
echo "check-static: [$(now)] configure $dir for its compile commands"
cmake -S . -B "$dir" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DBUILD_TESTING=OFF

failed=0
tidy_log="$dir/clang-tidy.log"
tidy_status=0
: >"$tidy_log"
for i in "${!sources[@]}"; do
  echo "check-static: [$(now)] clang-tidy $((i + 1))/${#sources[@]} ${sources[$i]}"
  clang-tidy -p "$dir" --quiet "${sources[$i]}" >>"$tidy_log" 2>&1 || tidy_status=$?
done
tidy_findings=$(grep -cE '^[^ ].*: (warning|error): ' "$tidy_log" || true)
if [ "$tidy_status" -ne 0 ] || [ "$tidy_findings" -ne 0 ]; then
  grep -E ': (warning|error): ' "$tidy_log" || tail -20 "$tidy_log"
  failed=1
fi
echo "check-static: clang-tidy: ${#sources[@]} files, $tidy_findings findings, $(since "$start") s"
tidy_done=$(date +%s)

# cppcheck's suppressions, with the reason:
#   missingIncludeSystem  the system and libcups headers are not analysed.
#   useStlAlgorithm       the table lookups are plain loops on purpose.
#   uninitvar in report/report_printer_levels.cc
#                         a false positive of cppcheck 2.10: it reads the
#                         braced uint32_t{...} widening in the level's
#                         computation as a use of the level itself, which
#                         every branch assigns before it is printed.
# From 2.11 cppcheck follows a function's branches only up to a limit unless
# told to follow them all, and says so with an "information" line that makes
# --error-exitcode fail; 2.10 follows them all and has no such option.
check_level=()
if cppcheck --help | grep -q -- '--check-level'; then
  check_level=(--check-level=exhaustive)
fi
cppcheck_log="$dir/cppcheck.log"
cppcheck_status=0
echo "check-static: [$(now)] cppcheck ${#sources[@]} files"
cppcheck --quiet --enable=warning,style,performance,portability \
    --std=c++17 --language=c++ --error-exitcode=1 --inline-suppr -I . \
    "${check_level[@]}" \
    --suppress=missingIncludeSystem --suppress=useStlAlgorithm \
    --suppress=uninitvar:report/report_printer_levels.cc \
    "${sources[@]}" >"$cppcheck_log" 2>&1 || cppcheck_status=$?
cppcheck_findings=$(grep -cE '^[^ ].*: (error|warning|style|performance|portability): ' "$cppcheck_log" || true)
if [ "$cppcheck_status" -ne 0 ] || [ "$cppcheck_findings" -ne 0 ]; then
  cat "$cppcheck_log"
  failed=1
fi
echo "check-static: cppcheck: ${#sources[@]} files, $cppcheck_findings findings, $(since "$tidy_done") s"

if [ "$failed" -ne 0 ]; then
  echo "check-static: FAILED"
  exit 1
fi
echo "check-static: OK"
