#!/bin/bash
# What of the engine the tests, the samples and the fuzz targets' corpus run through, by clang's coverage: lines and branches of each
# folder.
#
#   scripts/long/coverage.sh [FOLDER]   FOLDER holds a further corpus, a folder a target; builds into build-coverage
#
# Half an hour on two cores. Prints a table and leaves the whole report in build-coverage/report.txt; the exit status is 1 when the
# five folders together have under 97 % of lines or 90 % of branches. docs/fuzzing.md has the last result.
set -u
cd "$(dirname "$0")/../.." || exit 2
corpus=${1:-}
build=$PWD/build-coverage
profile=$build/profile
rm -rf "$profile"
mkdir -p "$profile"
fault() {
  tail -20 "$build/log"
  exit 2
}

flags="-O1 -fprofile-instr-generate -fcoverage-mapping"
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQXVIEW_TESTS=ON -DQXVIEW_HARDEN=OFF \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="$flags" \
  -DCMAKE_C_FLAGS_RELWITHDEBINFO="$flags" >"$build/log" 2>&1 || fault
ninja -C "$build" >>"$build/log" 2>&1 || fault

# Programs add to one file each, however many processes they are.
export LLVM_PROFILE_FILE=$profile/%4m.profraw
export QXVIEW=$build/qxview QXVIEW_LIBRARY=$build/libqxview.so
"$build/qxview_tests" --gtest_brief=1 >"$build/tests.log" 2>&1 || tail -3 "$build/tests.log"
# Tests that kill programs are left out: what a program was writing then is no profile.
for test in capture_exports capture_files command_line embedding exports fields list mib_modules questions; do
  timeout 900 python3 "tests/${test}_test.py" >"$build/test.log" 2>&1 || echo "$test: $(tail -n 1 "$build/test.log")"
done
for file in samples/*.pcap*; do
  "$QXVIEW" decode --ranges -x --keys "$file" >/dev/null 2>&1
  "$QXVIEW" decode --reassemble --modern --format json "$file" >/dev/null 2>&1
  "$QXVIEW" list "$file" >/dev/null 2>&1
done
for pack in fuzz/corpus/*.pack; do
  target=$(basename "$pack" .pack)
  "$build/fuzz_run" "$target" "$pack" ${corpus:+"$corpus/$target"} >/dev/null 2>&1 || echo "fuzz_run $target failed"
done

llvm-profdata merge -sparse -failure-mode=all "$profile"/*.profraw -o "$profile/all.profdata" || exit 2
llvm-cov report "$build/qxview_tests" -object "$build/fuzz_run" -object "$QXVIEW" -object "$QXVIEW_LIBRARY" \
  -instr-profile="$profile/all.profdata" -show-branch-summary core decoders files exports host >"$build/report.txt" 2>"$build/log" || fault

# The report's columns: file, regions (3), functions (3), lines (3), branches (3).
awk -v root="$PWD/" '
  function add(name) { lines[name] += $8; missed[name] += $9; branches[name] += $11; untaken[name] += $12 }
  /^[^ ]+\.(cpp|h) / { file = $1; sub(root, "", file); folder = file; sub("/.*", "", folder) }
  folder ~ /^(core|decoders|files|exports|host)$/ { add(folder); add("all five"); folder = "" }
  END {
    count = split("core decoders files exports host", names, " "); names[++count] = "all five"
    for (i = 1; i <= count; i++) {
      name = names[i]
      if (lines[name] == 0 || branches[name] == 0) { print "nothing is known of " name; exit 1 }
      byLine = 100 * (1 - missed[name] / lines[name]); byBranch = 100 * (1 - untaken[name] / branches[name])
      printf "%-9s %5.1f %% of %d lines, %5.1f %% of %d branches\n", name, byLine, lines[name], byBranch, branches[name]
    }
    exit !(byLine >= 97 && byBranch >= 90)
  }' "$build/report.txt"
