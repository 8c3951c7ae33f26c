#!/usr/bin/env bash
# Makes everything the build needs below .kaz/: an i386 sysroot from Debian packages, and sample photographs.
# With --tests it only installs the tools that the tests alone use.
# Idempotent: a second run only compares a stamp. Prints what it does; on failure says what to do next.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
kaz="$root/.kaz"
sysroot="$kaz/sysroot"
photos="$kaz/photos"
packages="$root/tools/sysroot-packages.txt"
single_files="$root/tools/single-files.txt"
host_tools=(clang lld cmake ninja-build libclang-rt-14-dev valgrind)
test_tools=(chromium parallel)

say() { printf 'kaz: %s\n' "$*" >&2; }
die() { say "$1"; shift; for line in "$@"; do printf '     %s\n' "$line" >&2; done; exit 1; }

# install_missing STEP PACKAGE...: those of the packages that this machine does not have.
install_missing() {
    local step="$1" missing=() tool sudo
    shift
    for tool in "$@"; do
        dpkg-query -W -f='${db:Status-Status}\n' "$tool" 2>/dev/null | grep -qx installed || missing+=("$tool")
    done
    ((${#missing[@]})) || return 0
    if [[ $EUID -eq 0 ]]; then sudo=(); elif command -v sudo >/dev/null; then sudo=(sudo); else
        die "these packages are missing: ${missing[*]}" "Install them as root:  apt-get install ${missing[*]}"
    fi
    say "${step}installing ${missing[*]} ..."
    "${sudo[@]}" apt-get update >"$kaz/apt.log" 2>&1 || true
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}" \
        >>"$kaz/apt.log" 2>&1 ||
        die "installing ${missing[*]} failed; the end of $kaz/apt.log:" "$(tail -n 5 "$kaz/apt.log")" \
            "Install them as root:  apt-get install ${missing[*]}"
}

if [[ "${1:-}" == --tests ]]; then
    mkdir -p "$kaz"
    install_missing "" "${test_tools[@]}"
    exit 0
fi

stamp="$(cat "$packages" "$single_files" "${BASH_SOURCE[0]}" | sha256sum | cut -d' ' -f1)"
if [[ -f "$kaz/stamp" && "$(<"$kaz/stamp")" == "$stamp $root" ]]; then exit 0; fi

command -v apt-get >/dev/null && command -v dpkg >/dev/null ||
    die "this set-up needs Debian's apt-get and dpkg (Debian 12 or a relative)."
mkdir -p "$kaz"

# --- the tools that run on this machine ----------------------------------------------------------
install_missing "1/3 " "${host_tools[@]}"
say "1/3 the build tools are there"

# --- the private i386 sysroot --------------------------------------------------------------------
# apt with its own state: GNUstep's i386 packages cannot be installed beside an amd64 system.
apt="$kaz/apt"
mkdir -p "$apt/state/lists/partial" "$apt/cache/archives/partial"
: >"$apt/state/status"
apt_options=(-o "Dir::State=$apt/state" -o "Dir::State::status=$apt/state/status" -o "Dir::Cache=$apt/cache"
    -o APT::Architecture=i386 -o APT::Architectures=i386 -o Debug::NoLocking=1 -o APT::Sandbox::User=root)

say "2/3 making the i386 sysroot (about 180 MB to fetch, once) ..."
# A source that fails to refresh matters only if a package cannot be found, which the next step tells.
apt-get "${apt_options[@]}" update >"$kaz/sysroot.log" 2>&1 || true
mapfile -t wanted < <(grep -v '^#' "$packages")
apt-get "${apt_options[@]}" -y --no-install-recommends --download-only install "${wanted[@]}" \
    >>"$kaz/sysroot.log" 2>&1 ||
    die "fetching the i386 packages failed; the end of $kaz/sysroot.log:" "$(tail -n 5 "$kaz/sysroot.log")" \
        "Check the network and the Debian sources in /etc/apt, then run the command again."
rm -rf "$sysroot.new"
mkdir -p "$sysroot.new"
for deb in "$apt"/cache/archives/*.deb; do dpkg -x "$deb" "$sysroot.new"; done
# Links that name the machine's own root must stay inside the sysroot.
find "$sysroot.new" -type l -lname '/*' -print0 | while IFS= read -r -d '' link; do
    ln -sfnr "$sysroot.new$(readlink "$link")" "$link"
done
# Valgrind needs the loader's symbols, and looks beside the loader.
mkdir -p "$sysroot.new/lib/i386-linux-gnu/.debug"
find "$sysroot.new/usr/lib/debug/.build-id" -name '*.debug' -exec mv -t "$sysroot.new/lib/i386-linux-gnu/.debug" {} +
rm -rf "$sysroot.new/usr/lib/debug"

# --- single files: headers, and photographs that anyone may use -----------------------------------
say "3/3 unpacking headers and the sample photographs ..."
rm -rf "$photos" "$apt/single"
mkdir -p "$photos"
# Lines of a destination, a package, and patterns of the files wanted from it.
while read -r destination package patterns; do
    (cd "$apt" && apt-get "${apt_options[@]}" download "$package") >>"$kaz/sysroot.log" 2>&1 ||
        die "fetching $package failed; the end of $kaz/sysroot.log:" "$(tail -n 5 "$kaz/sysroot.log")"
    mkdir -p "$apt/single"
    dpkg -x "$apt/${package}"_*.deb "$apt/single"
    for pattern in $patterns; do
        found=("$apt/single"/$pattern)
        [[ -e "${found[0]}" ]] || die "$package no longer holds $pattern."
        case "$destination" in
        sysroot) mkdir -p "$sysroot.new/${pattern%/*}" && cp -r "${found[@]}" "$sysroot.new/${pattern%/*}/" ;;
        photos) cp "${found[@]}" "$photos/" ;;
        *) die "$single_files names an unknown destination, $destination." ;;
        esac
    done
    rm -rf "$apt/single" "$apt/${package}"_*.deb
done < <(grep -v '^#' "$single_files")
rm -rf "$sysroot" && mv "$sysroot.new" "$sysroot"
rm -rf "$apt/cache/archives"/*.deb

printf '%s %s' "$stamp" "$root" >"$kaz/stamp"
say "set-up is complete"
