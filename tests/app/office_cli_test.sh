#!/usr/bin/env bash
# The office seat's commands, run as an operator would run them.
set -u
office="$1"
demo="$2"
cardsim="$3"
passed=0
failed=0
check() {  # name, expected output, command...
    local name="$1" expected="$2"
    shift 2
    local actual
    actual="$("$@" 2>&1)"
    if [ "$actual" == "$expected" ]; then passed=$((passed + 1)); else
        failed=$((failed + 1)); printf 'FAILED %s\n  expected: %q\n  actual:   %q\n' "$name" "$expected" "$actual"; fi
}
check_code() {  # name, expected exit code, command...
    local name="$1" expected="$2"
    shift 2
    "$@" >/dev/null 2>&1
    local code=$?
    if [ "$code" == "$expected" ]; then passed=$((passed + 1)); else
        failed=$((failed + 1)); echo "FAILED $name: exit $code, expected $expected"; fi
}

check eval-order "20" "$office" eval "2+3*4"
check eval-groups "21" "$office" eval "(1+2)*(3+4)"
check eval-fault $'0\nfault' "$office" eval "1/0"
check eval-unbalanced $'0\nfault' "$office" eval "(1+2"
check word-value "5" "$office" word "X(10+5)/3 Y2" X
check word-round "2" "$office" word "XROUND(2.5)" X
check word-missing "missing" "$office" word "X P12=5" X
check word-number "10" "$office" word "X10+5" X --number
check word-integer "-7" "$office" word "T-7.9" T --integer
check format-even "2" "$office" format 2.5 0
check format-odd "4" "$office" format 3.5 0
check format-pad "1.200" "$office" format 1.2 3
check format-single "0.3333333" "$office" format 0.333333333333 -1 --single
check_code usage-none 2 "$office"
check_code usage-eval 2 "$office" eval
check_code usage-word 2 "$office" word "X1" XY
check_code usage-format 2 "$office" format 1 2 --double
check_code usage-start 2 "$office" start
check_code help-tool 0 "$office" --help
check_code help-unknown 2 "$office" nonsense
check help-command "usage: kirvana-office eval \"EXPR\"                     evaluate an expression" "$office" eval --help
check_code help-blend 0 "$office" blend --help
case "$("$office" --help 2>/dev/null)" in *"select --root ROOT --dir DIR --program NAME"*) passed=$((passed + 1)) ;; *) failed=$((failed + 1)); echo "FAILED help on stdout" ;; esac

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cp -r "$demo" "$work/demo"
check_code start-demo 0 "$office" start --root "$work/demo"
summary="$("$office" start --root "$work/demo")"
case "$summary" in *"Card in use: no (office seat)"*) passed=$((passed + 1)) ;; *) failed=$((failed + 1)); echo "FAILED start summary: $summary" ;; esac
if [ "$(sed -n 5p "$work/demo/Control.cfg")" == "******" ]; then passed=$((passed + 1)); else failed=$((failed + 1)); echo "FAILED Control.cfg rewrite"; fi
rm "$work/demo/Messages/Logic.msg"
check_code start-missing-file 3 "$office" start --root "$work/demo"
message="$("$office" start --root "$work/demo" 2>&1)"
case "$message" in *"Logic.msg"*) passed=$((passed + 1)) ;; *) failed=$((failed + 1)); echo "FAILED message: $message" ;; esac
if grep -q "Logic.msg" "$work/demo/Service/LastFile.txt"; then passed=$((passed + 1)); else failed=$((failed + 1)); echo "FAILED LastFile.txt"; fi
check_code start-no-root 3 "$office" start --root "$work/none"

# The blend command on a motion text of the demo installation.
mkdir -p "$work/demo2" && cp -r "$demo/." "$work/demo2/" && mkdir -p "$work/demo2/Service"
printf 'N0001 M100\nN0002 M03\nN0003 G00 X100 Y100\nN0004 G101 X200 Y100\nN0005 G101 X300 Y100\n' > "$work/demo2/P.M1"
check blend-clean "critical errors: 0" "$office" blend "$work/demo2/P." --root "$work/demo2" --program P --dir Dorvenis
check blend-marks "N0005 G101 B1 X300 Y100" tail -n 1 "$work/demo2/P.M1"
printf 'N0001 M100\nN0002 G00 X0 Y0\nN0003 G102 X100 Y0 R40\n' > "$work/demo2/Q.M1"
check_code blend-critical 1 "$office" blend "$work/demo2/Q." --root "$work/demo2" --program Q --dir Dorvenis
check blend-report "Non-Interpolated Arc (Invalid R)" sed -n 6p "$work/demo2/Service/Blend.txt"
check_code blend-usage 2 "$office" blend "$work/demo2/Q." --root "$work/demo2"
check_code blend-one-spelling 2 "$office" blend "$work/demo2/Q." --root "$work/demo2" --program Q --directory Dorvenis
refusal="$("$office" blend "$work/demo2/Q." --root "$work/demo2" --program Q --dir Dorvenis 2>&1 >/dev/null)"
case "$refusal" in *"Service/Blend.txt"*) passed=$((passed + 1)) ;; *) failed=$((failed + 1)); echo "FAILED blend refusal: $refusal" ;; esac

# Convert, reverse and expand on a demo program, as the README shows them.
cp "$work/demo2/Programs/Dorvenis/PLATE01.prg" "$work/demo2/PLATE01.org"
check convert-label "dialect: 1" "$office" convert "$work/demo2/PLATE01." --root "$work/demo2"
check blend-label "critical errors: 0" "$office" blend "$work/demo2/PLATE01." --root "$work/demo2" --program PLATE01 --dir Dorvenis
check reverse-label $'critical errors: 0\nrecords: 6' "$office" reverse "$work/demo2/PLATE01." --root "$work/demo2" --program PLATE01 --dir Dorvenis
cp "$work/demo2/PLATE01.drw" "$work/demo2/Slot.drw"
check expand-root "hits: 5" "$office" expand Slot. --root "$work/demo2"
check_code expand-usage 2 "$office" expand Slot. --root

# An installation without Service/ and the other directories: the commands make them as the
# start-up does, and a report that cannot be written fails the command naming it.
mkdir -p "$work/bare/Data" && cp "$demo/Data/"* "$work/bare/Data/"
printf 'N0001 M100\nN0002 M03\nN0003 G00 X100 Y100\nN0004 G101 X200 Y100\n' > "$work/bare/P.M1"
check blend-bare "critical errors: 0" "$office" blend "$work/bare/P." --root "$work/bare" --program P --dir Dorvenis
check blend-bare-report "PROGRAM   :  P" sed -n 1p "$work/bare/Service/Blend.txt"
if [ -d "$work/bare/Dialogue/Reverse" ] && [ -d "$work/bare/PMAC" ]; then passed=$((passed + 1)); else failed=$((failed + 1)); echo "FAILED bare directories"; fi
check reverse-bare $'critical errors: 0\nrecords: 2' "$office" reverse "$work/bare/P." --root "$work/bare" --program P --dir Dorvenis
check reverse-bare-report "PROGRAM   :  P" sed -n 1p "$work/bare/Service/Reverse.txt"
rm "$work/bare/Service/Blend.txt" "$work/bare/Service/Reverse.txt"
mkdir -p "$work/bare/Service/Blend.txt/in-the-way" "$work/bare/Service/Reverse.txt/in-the-way"
check blend-report-fault "file fault: $work/bare/Service/Blend.txt" \
    "$office" blend "$work/bare/P." --root "$work/bare" --program P --dir Dorvenis
check_code blend-report-fault-code 1 "$office" blend "$work/bare/P." --root "$work/bare" --program P --dir Dorvenis
check reverse-report-fault "file fault: $work/bare/Service/Reverse.txt" \
    "$office" reverse "$work/bare/P." --root "$work/bare" --program P --dir Dorvenis

# A Control.cfg line of garbage is refused naming the file and the line; no folder is made.
mkdir -p "$work/garbage" && cp -r "$demo/." "$work/garbage/"
printf './\001\033[2J\n./Programs/\nDorvenis\n1\n******\n' > "$work/garbage/Control.cfg"
check start-garbage "Kirvana 32 cannot start: Control.cfg: line 1 holds a control character" "$office" start --root "$work/garbage"
check start-garbage-folders "" find "$work/garbage" -mindepth 1 -maxdepth 1 -type d -name '*[[:cntrl:]]*'

# Selection into the slots, and the slots as a new start finds them.
mkdir -p "$work/sel" && cp -r "$demo/." "$work/sel/"
check select-plate "Slot 1 (active): PLATE01 in Dorvenis, dialect 1, sheet 1000 x 500, records 6, words 24, hits 5" \
    "$office" select --root "$work/sel" --dir Dorvenis --program PLATE01
check_code select-errors 1 "$office" select --root "$work/sel" --dir Dorvenis --program ERRORS04 --slot 2
check select-refused $'Refused: ERRORS04\n\nCan Not Be Selected Due To Errors in Code !' \
    "$office" select --root "$work/sel" --dir Dorvenis --program ERRORS04 --slot 2
check select-missing "Refused: Program Does Not Exist !" "$office" select --root "$work/sel" --dir Dorvenis --program NONE
check_code select-usage 2 "$office" select --root "$work/sel" --dir Dorvenis --program PLATE01 --slot 3
check_code select-grid 0 "$office" select --root "$work/sel" --dir Dorvenis --program GRID03 --slot 2
check slots $'Slot 1: PLATE01 in Dorvenis, dialect 1, sheet 1000 x 500, records 6, words 24, hits 5\nSlot 2 (active): GRID03 in Dorvenis, dialect 1, sheet 1200 x 800, records 4, words 43, hits 63' \
    "$office" slots --root "$work/sel"

# The card command against the simulator, as an installer checks the link.
cp -r "$demo" "$work/card"
printf 'Card in use: TRUE\nPoll log: FALSE\n******\n' > "$work/card/Control.cnc"
mkfifo "$work/simin"
"$cardsim" --port 0 < "$work/simin" > "$work/simout" 2>&1 &
simpid=$!
exec 7> "$work/simin"
for _ in $(seq 50); do grep -q listening "$work/simout" && break; sleep 0.1; done
port="$(sed -n 's/.*127.0.0.1:\([0-9]*\).*/\1/p' "$work/simout" | head -1)"
printf 'Save: N\nWait: 0\nPoll: 50\nDelay: 50\nCard address: 127.0.0.1:%s\n******\n' "$port" > "$work/card/PMAC.cfg"
echo "set P1022 16384" >&7
echo "motor 2 -12.5" >&7
sleep 0.2
check card-queries $'P1022 -> 16384\n#2P -> -12.5\nM811 -> 1' "$office" card --root "$work/card" P1022 "#2P" M811
check_code card-usage 2 "$office" card --root "$work/card"
printf 'Card in use: FALSE\n******\n' > "$work/card/Control.cnc"
check card-office $'(card not in use: office seat, every answer is empty)\nP1022 -> ' "$office" card --root "$work/card" P1022
exec 7>&-
wait "$simpid"

# The watch command: the demo program run on a simulator that reads the installation's slots.
cp -r "$demo" "$work/watch"
printf 'Card in use: TRUE\nPoll log: FALSE\n******\n' > "$work/watch/Control.cnc"
mkfifo "$work/watchin"
"$cardsim" --port 0 --root "$work/watch" --speed 100 < "$work/watchin" > "$work/watchout" 2>&1 &
watchpid=$!
exec 8> "$work/watchin"
for _ in $(seq 50); do grep -q listening "$work/watchout" && break; sleep 0.1; done
port="$(sed -n 's/.*127.0.0.1:\([0-9]*\).*/\1/p' "$work/watchout" | head -1)"
printf 'Save: N\nWait: 0\nPoll: 50\nDelay: 50\nCard address: 127.0.0.1:%s\n******\n' "$port" > "$work/watch/PMAC.cfg"
check_code watch-select 0 "$office" select --root "$work/watch" --dir Dorvenis --program PLATE01
"$office" watch --root "$work/watch" --start --until-idle --interval 5 --ticks 2000 > "$work/watched" 2>&1
check watch-code 0 echo $?
check watch-end "| at rest | P1 record 12: X350 Y250 | hits: 5 | feed 100" sh -c "tail -1 '$work/watched' | sed 's/.*C [0-9.]* //'"
check watch-ran "running, in cycle" sh -c "grep -o 'running, in cycle' '$work/watched' | head -1"
echo "set P1020 5" >&8
sleep 0.1
check watch-messages $'tick 1: X 350.0 Y 250.0 C 0.00 | at rest | hits: 5 | feed 100\n  message: Program finished\n  message: Punch in clamp zone' \
    "$office" watch --root "$work/watch" --ticks 1
printf 'Card in use: FALSE\n******\n' > "$work/watch/Control.cnc"
check watch-office $'(card not in use: office seat, the machine stands still)\ntick 1: X  Y  C  | at rest | hits: 0 | feed \ntick 2: X  Y  C  | at rest | hits: 0 | feed ' \
    "$office" watch --root "$work/watch" --ticks 2 --interval 0
check_code watch-office-idle 1 "$office" watch --root "$work/watch" --ticks 3 --interval 0 --until-idle
check_code watch-usage 2 "$office" watch --root "$work/watch" --ticks 0
check_code watch-unknown 2 "$office" watch --root "$work/watch" --fast
exec 8>&-
wait "$watchpid"

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
