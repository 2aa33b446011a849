#!/bin/bash
# Runs the same korvel-cli session with the Linux build and with the Windows
# build (under Wine) and compares what each leaves on disk, so the Windows
# file layer is checked against the one the tests cover.
#   scripts/windows-smoke.sh LINUX_BUILD_DIR WINDOWS_BUILD_DIR
# The Windows build comes from cmake/mingw-w64.cmake.
set -euo pipefail
linux_cli="$(realpath "$1")/bin/korvel-cli"
windows_cli="$(realpath "$2")/bin/korvel-cli.exe"
demo="$(realpath "$1")/demo"
wine="$(command -v wine || command -v wine64 || echo /usr/lib/wine/wine64)"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
export WINEDEBUG=-all

session() { # CLI FOLDER
    local cli="$1" dir="$2"
    mkdir -p "$dir/in" "$dir/out"
    cp "$demo/demo.img" "$dir/a.img"
    cp "$demo/demo.dir" "$dir/a.dir"
    printf 'new model bytes\n' >"$dir/in/fresh.dff"
    head -c 70000 /dev/zero | tr '\0' 'x' >"$dir/in/big.txd"
    cd "$dir"
    first="$($cli list a.img | head -1 | cut -f1)"
    second="$($cli list a.img | sed -n 2p | cut -f1)"
    $cli add a.img in/fresh.dff in/big.txd
    $cli replace a.img "$first" in/big.txd
    $cli rename a.img fresh.dff Renamed.DFF
    $cli lowercase a.img --all
    $cli delete a.img "$second"
    $cli move-to-end a.img renamed.dff
    $cli marker a.img
    $cli rebuild a.img
    $cli extract a.img out --overwrite
    $cli list a.img >list.txt
    $cli check a.img >check.txt || true
    $cli info a.img cheetah.txd >info.txt 2>&1 || true
    $cli report a.img report.txt --text
    rm -rf in
    # The report carries the local date and time of its making.
    sed -i '/[0-9][0-9]:[0-9][0-9]/d' report.txt
}

(session "$linux_cli" "$work/linux")
(session "$wine $windows_cli" "$work/windows")
# Line endings of printed lists differ by platform; the files written do not.
for f in list.txt check.txt info.txt; do
    sed -i 's/\r$//' "$work/windows/$f"
done
if diff -r "$work/linux" "$work/windows"; then
    echo "windows-smoke: the Windows build left the same files as the Linux build"
else
    echo "windows-smoke: the two builds differ" >&2
    exit 1
fi
