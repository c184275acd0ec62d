#!/usr/bin/env bash
# kirvana-office plot: a demo program drawn to PNG and SVG, its options, and bad usage.
set -u
office="$1"
demo="$2"
passed=0
failed=0
fail() { failed=$((failed + 1)); echo "FAILED $*"; }
check_code() {  # name, expected exit code, command...
    local name="$1" expected="$2"
    shift 2
    "$@" >/dev/null 2>&1
    local code=$?
    if [ "$code" == "$expected" ]; then passed=$((passed + 1)); else fail "$name: exit $code, expected $expected"; fi
}
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cp -r "$demo" "$work/demo"
root="$work/demo"
"$office" select --root "$root" --dir Dorvenis --program GRID03 >/dev/null 2>&1 || fail "select GRID03"

out="$("$office" plot Actvprg1. --root "$root" --out "$work/grid.png" --size 400x300 --done 10 2>&1)"
[ "$out" == "entities: 3" ] && passed=$((passed + 1)) || fail "plot png: $out"
# A PNG of the asked size: its signature and the width and height of its header.
head -c 8 "$work/grid.png" | od -An -tx1 | grep -q "89 50 4e 47 0d 0a 1a 0a" && passed=$((passed + 1)) || fail "png signature"
size="$(od -An -tu1 -j16 -N8 "$work/grid.png" | tr -s ' ')"
[ "$size" == " 0 0 1 144 0 0 1 44" ] && passed=$((passed + 1)) || fail "png size: $size"
# The done hits change the picture.
"$office" plot Actvprg1. --root "$root" --out "$work/none.png" --size 400x300 >/dev/null 2>&1
cmp -s "$work/grid.png" "$work/none.png" && fail "done hits drew nothing" || passed=$((passed + 1))

"$office" plot "$root/Actvprg1." --root "$root" --out "$work/grid.svg" --view 0,900,1300,-100 >/dev/null 2>&1 \
    && grep -q "<svg" "$work/grid.svg" && passed=$((passed + 1)) || fail "plot svg"

check_code help 0 "$office" plot --help
check_code no-root 2 "$office" plot Actvprg1. --out "$work/x.png"
check_code no-out 2 "$office" plot Actvprg1. --root "$root"
check_code bad-ext 2 "$office" plot Actvprg1. --root "$root" --out "$work/x.jpg"
check_code bad-size 2 "$office" plot Actvprg1. --root "$root" --out "$work/x.png" --size 10x99999
check_code bad-view 2 "$office" plot Actvprg1. --root "$root" --out "$work/x.png" --view 1,2,3
check_code flat-view 2 "$office" plot Actvprg1. --root "$root" --out "$work/x.png" --view 1,2,1,5
check_code bad-done 2 "$office" plot Actvprg1. --root "$root" --out "$work/x.png" --done -4
check_code no-drawing 1 "$office" plot Nothing. --root "$root" --out "$work/x.png"
check_code unwritable 1 "$office" plot Actvprg1. --root "$root" --out "$work/no/such/dir/x.png"
printf 'short' > "$root/Short.drw"
check_code short-drawing 1 "$office" plot Short. --root "$root" --out "$work/x.png"

echo "office plot: $passed passed, $failed failed"
[ "$failed" == 0 ]
