#!/bin/bash
# Starts the real editor under a virtual X server and, with the keyboard
# only (F10, arrows, Enter, Escape), opens an archive, renames and deletes an
# entry, opens and closes the find window and closes the archive. Checks the
# directory file on disk and that the program shut down cleanly (exit 0,
# temps folder emptied).
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
printf '[Korvel]\r\nrecent1=none\r\nrecent2=none\r\nrecent3=none\r\nsort=offset\r\nshowGrid=True\r\nautoLoad=False\r\nshowColors=True\r\nfirstRun=False\r\nlanguage=english\r\narchiveState=peachy\r\nrebuildPrompt=False\r\ndeleteProm=False\r\nl1r=233\r\nl1g=233\r\nl1b=233\r\nl2r=255\r\nl2g=255\r\nl2b=255\r\n' >"$work/korvel.ini"
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
KORVEL_HOME="$work" "$korvel" &
pid=$!
xdotool search --sync --onlyvisible --name "Korvel" >"$work/wid" 2>/dev/null
wid=$(head -n1 "$work/wid")
[ -n "$wid" ] || { echo "no window"; kill "$pid"; exit 3; }
focus() { sleep 0.5; xdotool windowfocus --sync "$wid" 2>/dev/null || xdotool windowfocus "$wid"; sleep 0.3; }
keys() { xdotool key --delay 150 "$@"; sleep 0.8; }
await() { xdotool windowfocus --sync "$(xdotool search --sync --onlyvisible --name "$1" | head -n1)"; sleep 0.5; }
sleep 1; focus
keys F10 Down Return # File > Open
await Open; xdotool type --delay 20 "$archive"; keys Return
focus; xwd -root -silent >"$work/open.xwd"; keys Down Up # the first row is already current: move away and back
# Filter step (Ctrl+L): type part of a name, check the rows, clear it.
keys F10 Right Right Down Down Down Down Down Down Return # Commands > Rename
await Rename; keys ctrl+a; xdotool type --delay 20 "hero.dff"; keys Return
# The filter decides what Delete reaches: only walk.ifp is shown, Select all
# (F8) selects what is shown, and Delete must not touch the hidden rows.
focus; keys ctrl+l; xdotool type --delay 20 "WALK"; keys Down F8
keys F10 Right Right Down Down Down Return # Commands > Delete
keys ctrl+l Escape Escape # empty the filter, back to the list
focus; keys ctrl+f; await "Search archive"; keys Escape
xdotool search --onlyvisible --name "Search archive" >/dev/null 2>&1 && echo open >"$work/find"
focus; keys F10 Down Down Down Return # File > Close archive
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
[ ! -e "$work/find" ] || fail "Escape did not close the find window"
names=$(tr -s '\0' '\n' <"$work/e2e test.dir" | grep -a '[a-z]' | tr '\n' ' ')
[ "$names" = "hero.dff player.txd " ] || fail "directory holds: $names"
# A blank screen compresses to almost nothing; the window does not.
[ "$(gzip -c "$work/open.xwd" | wc -c)" -gt 5000 ] || fail "screen is blank"
echo "e2e keyboard session passed"
