#!/usr/bin/env bash
# Fuzzes one target for some time: fuzz.sh TARGET SECONDS [JOBS]. TARGET is read, sections, entries, manners,
# versions, memory, locations, demangler, datatype, paths, values, a2l or report. The search continues from the
# inputs of earlier runs in build/fuzz-corpus/TARGET. One input may take 10 seconds and 1 GB; an input that
# crashes, hangs or breaks a promise ends the run and is kept in build/fuzz-findings/TARGET.
set -euo pipefail
cd "$(dirname "$0")/.."
target=$1 seconds=$2 jobs=${3:-1}

scripts/install-packages.sh fuzz
cmake --preset fuzz >&2
cmake --build --preset fuzz --target "fuzz_$target" >&2

corpus=build/fuzz-corpus/$target findings=build/fuzz-findings/$target
mkdir -p "$corpus" "$findings"
seeds=$(mktemp -d)
# Inputs are short-lived files: kept in memory if the system has a place for that.
[ ! -d /dev/shm ] || TMPDIR=$(mktemp -d /dev/shm/brindle-fuzz-XXXXXX)
export TMPDIR
trap 'rm -rf "$seeds" ${TMPDIR:+"$TMPDIR"}' EXIT
fuzz/make_seeds.py "$seeds"

inputs=("$corpus" "$seeds/$target")
[ ! -d "fuzz/regressions/$target" ] || inputs+=("fuzz/regressions/$target")
declare -A longest=([read]=40000 [sections]=16000 [entries]=3000 [manners]=3000 [versions]=3000 [memory]=40000)
limits=(-timeout=10 -rss_limit_mb=1024 "-max_len=${longest[$target]:-1024}")
# A feature counts as rare until it occurs twice, not 256 times. Each run looks for its features in the list of
# the rare ones: with tens of thousands there, half of the time went into that.
limits+=(-entropic_feature_frequency_threshold=1)
[ "$jobs" -eq 1 ] || limits+=("-fork=$jobs")
# Marks of large blocks are cleared in place: to map their pages anew for each run is slower.
ASAN_OPTIONS=quarantine_size_mb=64:clear_shadow_mmap_threshold=16777216 "build/fuzz/fuzz/fuzz_$target" "${limits[@]}" \
    -max_total_time="$seconds" -print_final_stats=1 -dict=fuzz/dictionary.txt \
    "-artifact_prefix=$findings/" "${inputs[@]}"
