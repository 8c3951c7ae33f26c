#!/usr/bin/env bash
# setup_test.sh CASE: the set-up against an apt-get of its own, in a checkout whose path has spaces and quotes.
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
source_root="$(cd "$here/../.." && pwd)"
scratch="$(mktemp -d)"
trap 'chmod -R u+w "$scratch"; rm -rf "$scratch"' EXIT

fail() { echo "FAILED: $*"; echo "--- the set-up said:"; cat "$scratch/said" 2>/dev/null; exit 1; }

# --- a checkout, and packages to fetch --------------------------------------------------------------
checkout="$scratch/Anna's \"new\" pictures"
mkdir -p "$checkout/tools" "$scratch/bin" "$scratch/archive"
cp "$source_root/tools/setup.sh" "$checkout/tools/"
cat >"$checkout/tools/packages.txt" <<'TEXT'
run sysroot liba
run sysroot libb
run photos pictures usr/share/pictures/*.png
faces sysroot libc
- never perl
TEXT
make_package() { # NAME FILE...
    local name="$1" file
    mkdir -p "$scratch/deb/DEBIAN"
    printf 'Package: %s\nVersion: 1\nArchitecture: all\nMaintainer: nobody\nDescription: none\n' "$name" >"$scratch/deb/DEBIAN/control"
    for file in "${@:2}"; do
        mkdir -p "$scratch/deb/$(dirname "$file")"
        echo "$name" >"$scratch/deb/$file"
    done
    dpkg-deb --root-owner-group -b "$scratch/deb" "$scratch/archive/${name}_1_all.deb" >/dev/null
    rm -rf "$scratch/deb"
}
make_package liba usr/lib/liba.so usr/bin/a usr/share/doc/liba/copyright
make_package libb usr/lib/libb.so
make_package libc usr/lib/libc.so
make_package pictures usr/share/pictures/one.png usr/share/pictures/two.png usr/share/pictures/three.txt
ln -s "$here/fake-apt-get" "$scratch/bin/apt-get"
export PATH="$scratch/bin:$PATH" FAKE_ARCHIVE="$scratch/archive" FAKE_LOG="$scratch/fetched"
: >"$FAKE_LOG"

set_up() { "$checkout/tools/setup.sh" "$@" >"$scratch/said" 2>&1; }
fetched() { sort "$FAKE_LOG" | tr '\n' ' '; }
says() { grep -qF -- "$1" "$scratch/said" || fail "it does not say: $1"; }
check_complete() {
    local file
    for file in sysroot/usr/lib/liba.so sysroot/usr/lib/libb.so sysroot/usr/share/doc/liba/copyright photos/one.png photos/two.png; do
        [[ -s "$checkout/.kaz/$file" ]] || fail "$file is missing"
    done
    [[ -f "$checkout/.kaz/ready/run" ]] || fail "the part has no mark"
}

case "$1" in
complete) # Only what is wanted is unpacked, and nothing is fetched twice.
    set_up || fail "it failed"
    check_complete
    [[ ! -e "$checkout/.kaz/sysroot/usr/bin/a" ]] || fail "a program was unpacked"
    [[ ! -e "$checkout/.kaz/photos/three.txt" ]] || fail "a file was unpacked that the table does not name"
    [[ "$(fetched)" == "liba libb pictures " ]] || fail "fetched: $(fetched)"
    set_up || fail "the second time it failed"
    [[ ! -s "$scratch/said" ]] || fail "the second time is not silent"
    : >"$FAKE_LOG"
    set_up faces || fail "it failed to add a part"
    [[ "$(fetched)" == "libc " ]] || fail "fetched for the second part: $(fetched)"
    # A line more in the table fetches that line.
    make_package libd usr/lib/libd.so
    echo "run sysroot libd" >>"$checkout/tools/packages.txt"
    : >"$FAKE_LOG"
    set_up || fail "it failed after a change of the table"
    [[ "$(fetched)" == "libd " ]] || fail "fetched after a change of the table: $(fetched)"
    ;;
moved)
    set_up || fail "it failed"
    mv "$checkout" "$scratch/renamed"
    checkout="$scratch/renamed"
    : >"$FAKE_LOG"
    set_up || fail "it failed after the move"
    check_complete
    [[ ! -s "$FAKE_LOG" && ! -s "$scratch/said" ]] || fail "it worked again after the move"
    ;;
twice) # Two at once: one waits, and nothing is fetched twice.
    "$checkout/tools/setup.sh" 2>"$scratch/first" &
    set_up || fail "one failed"
    wait $! || fail "the other failed"
    check_complete
    cat "$scratch/first" >>"$scratch/said"
    [[ "$(fetched)" == "liba libb pictures " ]] || fail "fetched: $(fetched)"
    # And certainly at once.
    rm -rf "$checkout/.kaz/ready"
    flock "$checkout/.kaz/lock" sleep 2 &
    sleep 0.5
    set_up || fail "it failed while another worked"
    says "waiting for it"
    wait
    ;;
killed) # At every step, first run and second part alike: the mark is gone, and the next run heals.
    for step in update find fetch half unpack mark; do
        rm -rf "$checkout/.kaz"
        : >"$FAKE_LOG"
        program=""
        case "$step" in
        unpack) program=tar ;;
        mark) program=sync ;;
        esac
        if [[ -n "$program" ]]; then
            printf '#!/bin/sh\nkill -KILL $(cat "%s/pid")\nsleep 0.1\nexit 1\n' "$scratch" >"$scratch/bin/$program"
            chmod +x "$scratch/bin/$program"
        fi
        # shellcheck disable=SC2016
        FAKE_KILL="$step" FAKE_PID="$scratch/pid" bash -c 'echo $$ >"$1"; exec "$2"' setup "$scratch/pid" "$checkout/tools/setup.sh" >"$scratch/said" 2>&1 &&
            fail "the set-up outlived its end at $step"
        if [[ -n "$program" ]]; then rm "$scratch/bin/$program"; fi
        [[ ! -f "$checkout/.kaz/ready/run" ]] || fail "the mark outlived the interruption at $step"
        set_up || fail "the next run failed after $step"
        check_complete
        cmp -s <(dpkg-deb --fsys-tarfile "$FAKE_ARCHIVE/libb_1_all.deb" | tar -xO ./usr/lib/libb.so) \
            "$checkout/.kaz/sysroot/usr/lib/libb.so" || fail "a library is damaged after $step"
        echo "healed after $step"
    done
    # A part that was there comes back without being fetched again.
    printf '#!/bin/sh\nexit 1\n' >"$scratch/bin/sync"
    chmod +x "$scratch/bin/sync"
    set_up faces && fail "it ignores an error"
    rm "$scratch/bin/sync"
    [[ ! -f "$checkout/.kaz/ready/run" && ! -f "$checkout/.kaz/ready/faces" ]] || fail "a mark outlived the failure"
    : >"$FAKE_LOG"
    set_up faces || fail "the next run failed"
    check_complete
    [[ ! -s "$FAKE_LOG" ]] || fail "fetched again: $(fetched)"
    ;;
damaged) # A package of the right size with other bytes is fetched again.
    mkdir -p "$checkout/.kaz/apt/archives" && echo "$(sed -n 's/^layout=//p' "$checkout/tools/setup.sh")" >"$checkout/.kaz/layout"
    tr '\000' 'x' <"$FAKE_ARCHIVE/liba_1_all.deb" >"$checkout/.kaz/apt/archives/liba_1_all.deb"
    cp "$FAKE_ARCHIVE/libb_1_all.deb" "$checkout/.kaz/apt/archives/"
    set_up || fail "it failed"
    check_complete
    [[ "$(fetched)" == "liba pictures " ]] || fail "fetched: $(fetched)"
    ;;
failing) # Each failure ends in a sentence that says what to do.
    FAKE_FAULT=network set_up && fail "it ignores a dead network"
    says "Check the network"
    : >"$FAKE_LOG"
    set_up || fail "it does not recover from a dead network"
    [[ "$(fetched)" == "libb pictures " ]] || fail "what was fetched is not kept; fetched again: $(fetched)"
    rm "$checkout/.kaz/ready/run"
    echo "run sysroot libnone" >>"$checkout/tools/packages.txt"
    set_up && fail "it ignores an unknown package"
    says "Check that /etc/apt names the sources"
    sed -i '/libnone/d' "$checkout/tools/packages.txt"
    set_up nonsense && fail "it takes any part"
    says "there is no part 'nonsense'"
    # A disk that is full while libraries are unpacked.
    rm -rf "$checkout/.kaz"
    printf '#!/bin/sh\necho "tar: write error: No space left on device" >&2\nexit 2\n' >"$scratch/bin/tar"
    chmod +x "$scratch/bin/tar"
    set_up && fail "it ignores a full disk"
    rm "$scratch/bin/tar"
    says "The disk is full"
    set_up || fail "it does not recover from a full disk"
    check_complete
    ;;
read-only)
    if [[ $EUID -eq 0 ]]; then
        # Nobody is kept from writing but another user.
        chmod a+rx "$scratch" "$checkout"
        run=(setpriv --reuid 65534 --regid 65534 --clear-groups)
    else
        chmod a-w "$checkout"
        run=()
    fi
    "${run[@]}" "$checkout/tools/setup.sh" >"$scratch/said" 2>&1 && fail "it works without write access"
    says "cannot write to $checkout/.kaz"
    says "a copy of it that you own"
    ;;
*) fail "there is no case $1" ;;
esac
