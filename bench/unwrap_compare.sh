#!/usr/bin/env bash
# unwrap against ripmime, in one run: a message carrying a winmail.dat of
# SIZE (base64, as mail carries it) is unwrapped by tnef-reader into a whole
# new message, and split into files by Debian's ripmime (which only decodes
# the MIME parts: it leaves winmail.dat as it is). Prints wall time and peak
# resident size of each, best of three, and the ratio of the times.
#
#   bench/unwrap_compare.sh [SIZE]     SIZE of the winmail.dat, default 100M (K, M, G)
#
# Installs ripmime when it is missing (apt-get, as root); builds the tool and
# the bench helpers into build/; works in a scratch folder that it removes.
set -euo pipefail
cd "$(dirname "$0")/.."
size="${1:-100M}"
build=build

if ! command -v ripmime >/dev/null; then
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq ripmime >/dev/null
fi
[ -f "$build/CMakeCache.txt" ] || cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j2 --target tnef-reader make-big-stream measure-run >/dev/null

work=$(mktemp -d "${TMPDIR:-/tmp}/tnef-unwrap.XXXXXX")
trap 'rm -rf "$work"' EXIT
"$build/bench/make-big-stream" "$work/winmail.dat" "$size" >/dev/null
{
  printf 'From: Ann <ann@example.com>\nTo: bob@example.com\nSubject: big\nMIME-Version: 1.0\n'
  printf 'Content-Type: multipart/mixed; boundary="b"\n\n--b\nContent-Type: text/plain\n\nSee attached.\n'
  printf -- '--b\nContent-Type: application/ms-tnef; name="winmail.dat"\n'
  printf 'Content-Transfer-Encoding: base64\n\n'
  base64 -w 76 "$work/winmail.dat"
  printf -- '--b--\n'
} >"$work/message.eml"
rm "$work/winmail.dat"

# Best of three: "seconds maxrssKiB" of a command.
best() {
  local best_s="" best_kib=0 line s kib
  for _ in 1 2 3; do
    rm -rf "$work/out" "$work/unwrapped.eml" && mkdir "$work/out"
    line=$("$build/bench/measure-run" -- "$@")
    s=$(sed 's/.*"seconds": \([0-9.]*\).*/\1/' <<<"$line")
    kib=$(sed 's/.*"maxrssKiB": \([0-9]*\).*/\1/' <<<"$line")
    if [ -z "$best_s" ] || awk "BEGIN{exit !($s < $best_s)}"; then best_s=$s; fi
    [ "$kib" -gt "$best_kib" ] && best_kib=$kib
  done
  echo "$best_s $best_kib"
}

read -r rip_s rip_kib < <(best ripmime -i "$work/message.eml" -d "$work/out")
read -r tool_s tool_kib < <(best "$build/cli/tnef-reader" unwrap "$work/message.eml" -o "$work/unwrapped.eml")
printf 'message: %s bytes (winmail.dat of %s)\n' "$(stat -c %s "$work/message.eml")" "$size"
printf '%-22s %9s %12s\n' "" "seconds" "peak RSS KiB"
printf '%-22s %9.3f %12d\n' "ripmime (split)" "$rip_s" "$rip_kib"
printf '%-22s %9.3f %12d\n' "tnef-reader unwrap" "$tool_s" "$tool_kib"
awk "BEGIN{printf \"unwrap / ripmime: %.2f (target: at most 2)\n\", $tool_s / $rip_s}"
