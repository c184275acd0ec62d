#!/usr/bin/env bash
# The office seat against a card that fails (error answers, a dropped connection, slow answers)
# and against names that would lead out of the program store.
set -u
office="$1"
demo="$2"
cardsim="$3"
passed=0
failed=0
pass() { passed=$((passed + 1)); }
fail() { failed=$((failed + 1)); echo "FAILED $*"; }
expect_code() {  # name, expected exit code, actual exit code
    if [ "$3" == "$2" ]; then pass; else fail "$1: exit $3, expected $2"; fi
}
expect_in() {  # name, text expected in the output, output
    case "$3" in *"$2"*) pass ;; *) fail "$1: no \"$2\" in: $3" ;; esac
}

work="$(mktemp -d)"
simpid=""
cleanup() {
    exec 7>&- 2>/dev/null
    [ -n "$simpid" ] && wait "$simpid"
    rm -rf "$work"
}
trap cleanup EXIT

# Names: nothing is selected from, or written to, a folder outside the program store.
cp -r "$demo" "$work/inst"
mkdir -p "$work/outside"
cp "$demo/Programs/Dorvenis/PLATE01.prg" "$work/outside/EVIL.prg"
out="$("$office" select --root "$work/inst" --dir ../../outside --program EVIL 2>&1)"
expect_code select-dir-outside 1 $?
expect_in select-dir-outside "Refused: Invalid Directory Name !" "$out"
out="$("$office" select --root "$work/inst" --dir Dorvenis --program ../../../outside/EVIL 2>&1)"
expect_code select-program-outside 1 $?
expect_in select-program-outside "Refused: Invalid Program Name !" "$out"
out="$("$office" select --root "$work/inst" --dir "$work/outside" --program EVIL 2>&1)"
expect_code select-absolute 1 $?
if [ "$(ls "$work/outside")" == "EVIL.prg" ]; then pass; else fail "written outside: $(ls "$work/outside")"; fi
if ls "$work/inst"/Actvprg* >/dev/null 2>&1; then fail "a slot was filled"; else pass; fi
out="$("$office" blend "$work/inst/P." --root "$work/inst" --program ../EVIL --dir Dorvenis 2>&1)"
expect_code blend-name 2 $?
expect_in blend-name "Invalid Program Name !" "$out"
out="$("$office" reverse "$work/inst/P." --root "$work/inst" --program P --dir "a/b" 2>&1)"
expect_code reverse-name 2 $?
expect_in reverse-name "Invalid Directory Name !" "$out"

# The simulated card, scripted through its standard input.
mkfifo "$work/simin"
"$cardsim" --port 0 < "$work/simin" > "$work/simout" 2>&1 &
simpid=$!
exec 7> "$work/simin"
for _ in $(seq 50); do grep -q listening "$work/simout" && break; sleep 0.1; done
port="$(sed -n 's/.*127.0.0.1:\([0-9]*\).*/\1/p' "$work/simout" | head -1)"
sim() {  # a command to the simulator, and a moment for it to take effect
    echo "$1" >&7
    sleep 0.2
}
printf 'Card in use: TRUE\nPoll log: FALSE\n******\n' > "$work/inst/Control.cnc"
card_cfg() {  # PMAC.cfg with the simulator's port and the operation deadline
    printf 'Save: N\nWait: 0\nPoll: 50\nDelay: 50\nCard address: 127.0.0.1:%s\nDeadline: %s\n******\n' "$port" "$1" \
        > "$work/inst/PMAC.cfg"
}
card_cfg 30000

# An error answer to a command: printed, and the command fails.
out="$("$office" card --root "$work/inst" P1 FOO P2 2>/dev/null)"
expect_code card-error 5 $?
if [ "$out" == $'P1 -> 0\nFOO -> card fault 3: ERR003\nP2 -> 0' ]; then pass; else fail "card-error output: $out"; fi
"$office" card --root "$work/inst" P1 >/dev/null 2>&1
expect_code card-fine 0 $?

# A download line the card refuses: the selection reports the card fault and fails.
sim "reject X100"
out="$("$office" select --root "$work/inst" --dir Dorvenis --program PLATE01 2>"$work/err")"
expect_code select-err003 5 $?
expect_in select-err003 "Download failed: card fault 3: ERR003 in line " "$out"
expect_in select-err003-asked "An error occurred while talking to PMAC !" "$(cat "$work/err")"
sim "reject"
"$office" select --root "$work/inst" --dir Dorvenis --program PLATE01 >/dev/null 2>&1
expect_code select-card-fine 0 $?

# A card that drops the connection during the selection's download (with empty slots the
# start downloads nothing).
rm -f "$work/inst"/Actvprg*
sim "drop"
out="$("$office" select --root "$work/inst" --dir Dorvenis --program PLATE01 2>/dev/null)"
expect_code select-dropped 5 $?
expect_in select-dropped "Download failed: card fault 1003: The card closed the connection" "$out"

# A slow card: every answer within the time-out, but the whole run ends by its deadline.
rm -f "$work/inst"/Actvprg*
card_cfg 1000
sim "slow 200"
out="$("$office" card --root "$work/inst" P1 P2 P3 P4 P5 P6 P7 P8 P9 P10 2>/dev/null)"
expect_code card-slow 5 $?
expect_in card-slow "card fault 1006: The card did not finish the operation within 1000 ms" "$out"
expect_in card-slow-rest "P10 -> not sent: the deadline of the run has passed" "$out"
out="$("$office" select --root "$work/inst" --dir Dorvenis --program PLATE01 2>/dev/null)"
expect_code select-slow 5 $?
expect_in select-slow "Download failed: card fault 1006" "$out"
sim "slow 0"

exec 7>&-
wait "$simpid"
simpid=""
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
