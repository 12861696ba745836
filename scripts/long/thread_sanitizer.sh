#!/bin/bash
# Everything that has threads under ThreadSanitizer, which sees two of them touch one thing without an order: `--jobs`, live
# captures beside the view, several views and engines in one program, and the tests of what they share.
#
#   scripts/long/thread_sanitizer.sh [FOLDER]   captures of FOLDER are decoded with four jobs, beside the samples; builds into build-tsan
#
# Everything is compiled with it: code that is not looks as if it did nothing. A quarter of an hour on two cores, of which ten are
# the build. The exit status is 1 when something was found; docs/long-checks.md has the last result.
set -u
cd "$(dirname "$0")/../.." || exit 2
folder=${1:-}
logs=$(mktemp -d)
trap 'rm -rf "$logs"' EXIT
fault() {
  tail -20 "$logs/build"
  exit 2
}

cmake -S . -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQXVIEW_TESTS=ON -DQXVIEW_HARDEN=OFF \
  -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g1 -fsanitize=thread" -DCMAKE_C_FLAGS_RELWITHDEBINFO="-O1 -g1 -fsanitize=thread" \
  -DCMAKE_EXE_LINKER_FLAGS=-fsanitize=thread -DCMAKE_SHARED_LINKER_FLAGS=-fsanitize=thread >"$logs/build" 2>&1 || fault
ninja -C build-tsan qxview libqxview qxview_tests >>"$logs/build" 2>&1 || fault
# Addresses that the sanitizer cannot live with are not given out.
run() { TSAN_OPTIONS="log_path=$logs/report exitcode=66 halt_on_error=0" setarch -R "$@"; }

failed=0
step() {
  local name=$1
  shift
  if run "$@" >"$logs/out" 2>&1 && ! compgen -G "$logs/report.*" >/dev/null; then
    echo "ok   $name"
  else
    echo "FAIL $name"
    tail -n 5 "$logs/out"
    cat "$logs"/report.* 2>/dev/null | head -60
    rm -f "$logs"/report.*
    failed=1
  fi
}

QXVIEW=$PWD/build-tsan/qxview
export QXVIEW QXVIEW_LIBRARY=$PWD/build-tsan/libqxview.so
QXVIEW_EVERY=8 step "several jobs" python3 tests/jobs_test.py
step "live captures" python3 tests/live_capture_test.py
step "C++ tests of what threads share" build-tsan/qxview_tests --gtest_filter='*Thread*:*Lock*:*State*:*Browse*:*Hash*:*Secrets*'
c++ -std=c++20 -O1 -g1 -fsanitize=thread -Iinclude tests/embedding/threads.cpp -o build-tsan/threads build-tsan/libqxview.so \
  -Wl,-rpath,"$PWD/build-tsan" -pthread
step "engines and views in several threads" build-tsan/threads samples/dns.pcap
for file in samples/*.pcap*; do
  step "--jobs 4 $file" "$QXVIEW" decode --jobs 4 --keys --modern --set Reassembly=1 --format json "$file"
  step "list --jobs 4 $file" "$QXVIEW" list --jobs 4 "$file"
  step "fields --jobs 4 $file" "$QXVIEW" fields --jobs 4 -e frame.summary -e frame.protocols -e ip.src "$file"
  step "xml --jobs 4 $file" "$QXVIEW" xml --jobs 4 "$file" -
done
if [[ -n $folder ]]; then
  count=0
  for file in "$folder"/*; do
    run "$QXVIEW" decode --jobs 4 --keys --modern --set Reassembly=1 --keep-going "$file" >/dev/null 2>&1
    run "$QXVIEW" list --jobs 4 --keep-going "$file" >/dev/null 2>&1
    run "$QXVIEW" fields --jobs 4 -e frame.summary -e frame.protocols -e ip.src --keep-going "$file" >/dev/null 2>&1
    count=$((count + 1))
    if compgen -G "$logs/report.*" >/dev/null; then
      echo "FAIL $file"
      cat "$logs"/report.* | head -60
      rm -f "$logs"/report.*
      failed=1
    fi
  done
  echo "$count files of the folder"
else
  echo "no folder of captures was named: the samples alone"
fi
exit $failed
