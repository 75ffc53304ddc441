#!/usr/bin/env bash
#
# Runs fuzzers, one after the other, each for the given time. Exits with 1 when any of them has
# found something; the inputs are then in build/fuzz/findings/TARGET. SIGTERM ends the fuzzer under
# way, and the run: with 3 when nothing was found.
#
#   tests/fuzz/run_fuzzer.sh SECONDS [TARGET...]    the default is all targets
#
# Builds the preset fuzz first, unless VORNIC_FUZZERS names a folder with the programs. What is
# found interesting on the way is kept in build/fuzz/inputs/TARGET and used by the next run;
# VORNIC_FUZZ_FOLDER names another place for inputs, findings and logs.
set -euo pipefail
here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
root=$(cd -- "$here/../.." && pwd)

if (($# == 0)) || [[ ! $1 =~ ^[1-9][0-9]*$ ]]; then
    echo "usage: tests/fuzz/run_fuzzer.sh SECONDS [TARGET...]" >&2
    exit 2
fi
seconds=$1
shift
targets=("$@")
((${#targets[@]})) || targets=(allocator commands import inspection keys ring statefile)

folder=${VORNIC_FUZZ_FOLDER:-$root/build/fuzz}
programs=${VORNIC_FUZZERS:-$root/build/fuzz/tests/fuzz}
[[ -v VORNIC_FUZZERS ]] || "$root/scripts/build" fuzz

# A process forgets what inputs leave behind that stop the library by contract, so it ends in time.
longest_round=600

export ASAN_OPTIONS=${ASAN_OPTIONS-detect_stack_use_after_return=1:strict_string_checks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS-print_stacktrace=1}

if [[ -d /dev/shm ]]; then memory=/dev/shm; else memory=${TMPDIR:-/tmp}; fi
TMPDIR=$(mktemp -d -p "$memory")
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT

cut=no
trap 'cut=yes' TERM
interrupted=72 # how a fuzzer exits after SIGTERM

failed=()
for target in "${targets[@]}"; do
    if [[ ! -x $programs/fuzz_$target ]]; then
        echo "run_fuzzer: no target $target in $programs" >&2
        exit 2
    fi
    inputs=$folder/inputs/$target
    findings=$folder/findings/$target
    log=$folder/$target.log
    mkdir -p "$inputs" "$findings"
    : >"$log"
    : >"$log.begin"
    arguments=(-timeout=60 -report_slow_units=60 -rss_limit_mb=4096 -max_len=16384 -print_final_stats=1
        -artifact_prefix="$findings/")
    dictionary=$here/dictionaries/$target.dict
    [[ ! -e $dictionary ]] || arguments+=(-dict="$dictionary")
    end=$((SECONDS + seconds))
    executions=0
    found=no
    while [[ $found$cut == nono ]] && ((SECONDS < end)); do
        round=$((end - SECONDS < longest_round ? end - SECONDS : longest_round))
        status=0
        "$programs/fuzz_$target" "${arguments[@]}" -max_total_time="$round" \
            "$inputs" "$here/corpus/$target" >"$log.round" 2>&1 || status=$?
        ((status == 0)) || [[ $status == "$interrupted" && $cut == yes ]] || found=yes
        count=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log.round")
        executions=$((executions + ${count:-0}))
        cat "$log.round" >>"$log"
    done
    if [[ $found == yes ]]; then
        { grep -vE '^#[0-9]+\s' "$log.round" || true; } | tail -n 60 >&2
    fi
    # A copy of the process that a sanitizer ends leaves an input here, while its original goes on.
    if [[ $found == yes || -n $(find "$findings" -type f -newer "$log.begin") ]]; then
        failed+=("$target")
        echo "run_fuzzer: $target has found something: $findings" >&2
    fi
    coverage=$(grep -oE ' cov: [0-9]+ ft: [0-9]+' "$log" | tail -n 1 || true)
    rm -f "$log.begin" "$log.round"
    echo "$target: $executions inputs,$coverage, $(find "$inputs" -type f | wc -l) kept"
    [[ $cut == no ]] || break
done
((${#failed[@]} == 0)) || exit 1
[[ $cut == no ]] || exit 3
