#!/usr/bin/env bash
# The panel's command line: a screenshot of FrontEnd and of a form on the offscreen platform,
# a form no one answers to, bad usage, and the line it says without a display.
set -euo pipefail
panel="$1"
demo="$2"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cp -r "$demo" "$work/demo"
cd "$work/demo"
fail() { echo "FAIL: $*" >&2; exit 1; }

env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$panel" --screenshot "$work/front.png" --after 100 > "$work/out" 2>&1 \
  || fail "screenshot of FrontEnd: $(cat "$work/out")"
[ "$(head -c 8 "$work/front.png" | od -An -tx1 | tr -d ' \n')" = "89504e470d0a1a0a" ] || fail "front.png is no PNG"

env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$panel" --screenshot "$work/messages.png" --after 100 --form MessageForm \
  > "$work/out" 2>&1 || fail "screenshot of MessageForm: $(cat "$work/out")"
[ -s "$work/messages.png" ] || fail "messages.png missing"

status=0
env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$panel" --screenshot "$work/x.png" --after 50 --form NoSuchForm \
  > "$work/out" 2>&1 || status=$?
[ "$status" -eq 2 ] || fail "unknown form gave $status"
grep -q "no form answers to NoSuchForm" "$work/out" || fail "unknown form message: $(cat "$work/out")"

status=0
"$panel" --after > "$work/out" 2>&1 || status=$?
[ "$status" -eq 2 ] || fail "bad usage gave $status"
grep -q "^usage: kirvana" "$work/out" || fail "usage line missing"

status=0
env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$panel" > "$work/out" 2>&1 || status=$?
[ "$status" -eq 1 ] || fail "no display gave $status"
[ "$(wc -l < "$work/out")" -eq 1 ] || fail "no display: more than one line: $(cat "$work/out")"
grep -q "xvfb-run ./run" "$work/out" || fail "no display line: $(cat "$work/out")"
echo "panel command line: ok"
