#!/bin/bash
# Starts the real editor under a virtual X server on a small archive given on
# the command line, selects everything with F8, closes the archive with
# Ctrl+C and ends the program the way a logout does. Checks that each key
# changed the screen, that the archive reached the recent list, and that the
# program shut down cleanly (exit 0, temps folder emptied).
# usage: e2e_keyboard.sh KORVEL_BINARY LANG_INI
set -u
korvel=$1
lang=$2
for tool in xvfb-run xdotool xwd; do
    command -v "$tool" >/dev/null || { echo "skipped: $tool is missing"; exit 77; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$lang" "$work/lang.ini"
printf '[Korvel]\r\nrecent1=none\r\nrecent2=none\r\nrecent3=none\r\nsort=offset\r\nshowGrid=True\r\nautoLoad=False\r\nshowColors=True\r\nfirstRun=False\r\nlanguage=english\r\narchiveState=peachy\r\nrebuildPrompt=False\r\nl1r=233\r\nl1g=233\r\nl1b=233\r\nl2r=255\r\nl2g=255\r\nl2b=255\r\n' >"$work/korvel.ini"
mkdir -p "$work/temps"
echo leftover >"$work/temps/leftover.dff"

# Three one-sector entries: a directory record is start sector, size in
# sectors (both 32-bit little-endian) and a 24-byte name.
record() {
    printf "\\$(printf %03o "$1")\\000\\000\\000\\001\\000\\000\\000%s" "$2"
    head -c $((24 - ${#2})) /dev/zero
}
archive="$work/e2e test.img"
{ record 0 player.dff; record 1 player.txd; record 2 walk.ifp; } >"$work/e2e test.dir"
head -c $((3 * 2048)) /dev/urandom >"$archive"

cat >"$work/session.sh" <<'INNER'
set -u
work=$1; korvel=$2; archive=$3
KORVEL_HOME="$work" "$korvel" "$archive" &
pid=$!
xdotool search --sync --onlyvisible --name "Korvel" >"$work/wid" 2>/dev/null
wid=$(head -n1 "$work/wid")
[ -n "$wid" ] || { echo "no window"; kill "$pid"; exit 3; }
sleep 1
xdotool windowfocus --sync "$wid" 2>/dev/null || xdotool windowfocus "$wid"
sleep 0.3
xwd -root -silent >"$work/open.xwd"
xdotool key --window "$wid" F8; sleep 0.5
xwd -root -silent >"$work/selected.xwd"
xdotool key --window "$wid" ctrl+c; sleep 0.5
xwd -root -silent >"$work/closed.xwd"
kill -TERM "$pid"
wait "$pid"
echo "exit=$?" >"$work/exit"
INNER

timeout 90 xvfb-run -a -s "-screen 0 800x600x24" bash "$work/session.sh" "$work" "$korvel" "$archive"
status=$?
fail() { echo "FAIL: $*"; exit 1; }
[ $status -eq 0 ] || fail "session script ended with $status"
grep -q '^exit=0$' "$work/exit" || fail "korvel did not exit cleanly: $(cat "$work/exit")"
grep -q "^recent1=$archive" "$work/korvel.ini" || fail "archive not in recent1"
[ ! -e "$work/temps/leftover.dff" ] || fail "temps folder not emptied on shutdown"
# A blank screen compresses to almost nothing; the window does not.
[ "$(gzip -c "$work/open.xwd" | wc -c)" -gt 5000 ] || fail "screen is blank"
cmp -s "$work/open.xwd" "$work/selected.xwd" && fail "F8 changed nothing on screen"
cmp -s "$work/selected.xwd" "$work/closed.xwd" && fail "Ctrl+C changed nothing on screen"
echo "e2e keyboard session passed"
