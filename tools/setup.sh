#!/usr/bin/env bash
# setup.sh [PART...]: brings parts of tools/packages.txt to this machine and below .kaz/: by default run; all stands for what
# builds and tests everything.
#
# A part that is there costs a comparison. Several at once wait for each other. An interrupted set-up goes on where it
# was: a part's mark in .kaz/ready/ is its lines of the table, is taken away before anything changes and comes back when
# everything is in place. Nothing below .kaz/ holds its path, so a checkout may be moved. Says what to do next on failure.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
table="$root/tools/packages.txt"
kaz="$root/.kaz"
sysroot="$kaz/sysroot"
photos="$kaz/photos"
measured="$kaz/measured"
log="$kaz/setup.log"
# Raise it when what is unpacked, or how, changes: the sysroot is then made anew.
layout=3

say() { printf 'kaz: %s\n' "$*" >&2; }
die() { say "$1"; shift; for line in "$@"; do printf '     %s\n' "$line" >&2; done; exit 1; }

# failed WHAT: ends the set-up with the end of the log, and advice that fits it.
failed() {
    local advice="Run the command again; what was fetched is kept." end
    end="$(grep -v '^$' "$log" | tail -n 5)"
    case "$end" in
    *"No space left"* | *"enough free space"*)
        advice="The disk is full: $(df -h --output=avail,target "$kaz" | tail -n 1 | sed 's/^ *//; s/ / free on /')."
        advice+=" Free some space and run the command again." ;;
    *"Permission denied"* | *"Read-only"*)
        advice="Run the command as the owner of $root, or in a copy of it that you own." ;;
    *resolv* | *connect* | *"Network is unreachable"* | *"timed out"* | *"Failed to fetch"*)
        advice="Check the network and the Debian sources in /etc/apt, then run the command again; what was fetched is kept." ;;
    *"Unable to locate"* | *"no installation candidate"*)
        advice="Check that /etc/apt names the sources of Debian 12, and the network, then run the command again." ;;
    esac
    die "$1 failed; the end of $log:" "$end" "$advice"
}

rows() { grep -E "^($1) +($2) " "$table" || true; }
names() { rows "$1" "$2" | awk '{print $3}'; }
either() { local IFS='|'; echo "$*"; }
mark() { echo "layout $layout"; rows "$1" '[a-z]+'; }
is_ready() { [[ -f "$kaz/ready/$1" && "$(<"$kaz/ready/$1")" == "$(mark "$1")" ]]; }

known=(run faces tests sanitize peers detection)
parts=(run)
for part in "$@"; do
    case "$part" in
    run) ;;
    all) parts=(run faces tests sanitize) ;;
    *)
        [[ " ${known[*]} " == *" $part "* ]] || die "there is no part '$part' of the set-up; there are ${known[*]}."
        parts+=("$part")
        ;;
    esac
done

# The parts of $parts that are not there yet, into $missing. A tool may be gone although its part was set up, when the
# checkout is seen from another machine.
find_missing() {
    local part tools
    missing=()
    for part in "${parts[@]}"; do is_ready "$part" || missing+=("$part"); done
    mapfile -t tools < <(names "$(either "${parts[@]}")" tool)
    missing_tools=()
    ((${#tools[@]})) || return 0
    mapfile -t missing_tools < <(comm -23 <(printf '%s\n' "${tools[@]}" | sort) \
        <(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "${tools[@]}" 2>/dev/null | sed -n 's/^installed //p' | sort))
}

command -v apt-get >/dev/null && command -v dpkg-deb >/dev/null ||
    die "this set-up needs Debian's apt-get and dpkg (Debian 12 or a relative)."
find_missing
if ((${#missing[@]} + ${#missing_tools[@]} == 0)); then exit 0; fi

mkdir -p "$kaz" 2>/dev/null && [[ -w "$kaz" ]] ||
    die "cannot write to $kaz." "Run the command as the owner of $root, or in a copy of it that you own:" \
        "  cp -r $(printf %q "$root") ~ && cd ~/$(printf %q "${root##*/}")"
exec {lock}>"$kaz/lock"
if ! flock -n "$lock"; then
    say "another set-up is at work in $kaz; waiting for it ..."
    flock "$lock"
    find_missing
    if ((${#missing[@]} + ${#missing_tools[@]} == 0)); then exit 0; fi
fi
: >"$log"

# --- the tools that run on this machine ----------------------------------------------------------
if ((${#missing_tools[@]})); then
    by_hand="Install them as root:  apt-get install ${missing_tools[*]}"
    if [[ $EUID -eq 0 ]]; then sudo=(); elif command -v sudo >/dev/null; then sudo=(sudo); else
        die "these packages are missing: ${missing_tools[*]}" "$by_hand"
    fi
    say "installing ${missing_tools[*]} ..."
    # A source that fails to refresh matters only if a package cannot be found, which the next step tells.
    "${sudo[@]}" apt-get update >>"$log" 2>&1 || true
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing_tools[@]}" \
        >>"$log" 2>&1 || { say "$by_hand"; failed "installing ${missing_tools[*]}"; }
    if ((${#missing[@]} == 0)); then exit 0; fi
fi

# --- the private i386 sysroot --------------------------------------------------------------------
# apt with a state of its own, which is what lies in the sysroot: GNUstep's i386 packages cannot be installed beside an
# amd64 system. apt runs in its folder and sees relative paths, so that no character of the path matters.
apt="$kaz/apt"
status="$apt/status"
archives="$apt/archives"
done_files="$kaz/files"

if [[ ! -f "$kaz/layout" || "$(<"$kaz/layout")" != "$layout" ]]; then
    rm -rf "$kaz/ready" "$sysroot" "$photos" "$measured" "$done_files" "$apt" "$kaz/layout"
fi
mkdir -p "$sysroot" "$photos" "$measured" "$apt/state/lists/partial" "$archives/partial" "$kaz/ready"
echo "$layout" >"$kaz/layout"
touch "$status" "$done_files"

cd "$apt"
apt_options=(-o Dir::State=./state -o Dir::State::status=./known -o Dir::Cache=. -o Dir::Cache::archives=./archives
    -o APT::Architecture=i386 -o APT::Architectures=i386 -o APT::Sandbox::User=root -o Debug::NoLocking=1
    -o Acquire::Languages=none -o Acquire::ForceHash=SHA256 -o APT::Get::AllowUnauthenticated=false)
apt_get() { apt-get "${apt_options[@]}" -y --no-install-recommends "$@"; }

# What apt takes for installed: what is in the sysroot, and what is never wanted there.
write_known() {
    local package
    cat "$status"
    for package in $(names - never); do
        printf 'Package: %s\nStatus: install ok installed\nVersion: 99:0\nArchitecture: i386\nMulti-Arch: foreign\n\n' \
            "$package"
    done
}
write_known >known

# The entries of the packages in the sysroot, without those named.
status_without() { awk -v gone=" $* " 'BEGIN {RS = ""; ORS = "\n\n"} index(gone, " " $2 " ") == 0' "$status"; }

missing_pattern="$(either "${missing[@]}")"
mapfile -t wanted < <(names "$missing_pattern" sysroot)
mapfile -t files < <(rows "$missing_pattern" 'headers|photos|measured' | grep -vFx -f "$done_files" || true)

say "reading Debian's lists of packages ..."
apt_get update >>"$log" 2>&1 || true

# uris COMMAND...: a line for each package that apt would fetch: its file, size and SHA-256.
uris() { apt_get --print-uris -o Dir::Cache::archives=./nothing "$@" | sed -nE "s/^'.*' ([^ ]+) ([0-9]+) SHA256:/\1 \2 /p"; }
mkdir -p nothing/partial
: >to-unpack
if ((${#wanted[@]})); then uris install "${wanted[@]}" >to-unpack 2>>"$log" || failed "finding the packages"; fi
: >to-pick
for line in "${files[@]}"; do
    read -r _ _ package _ <<<"$line"
    uris download "$package" >>to-pick 2>>"$log" || failed "finding $package"
done

# is_whole FILE SHA256: the file was fetched completely and is what Debian signed.
is_whole() { [[ -f "$archives/$1" ]] && sha256sum -c --status <<<"$2  $archives/$1" 2>/dev/null; }
bytes=0
while read -r file size sum; do
    # apt looks at the size alone.
    is_whole "$file" "$sum" || { rm -f "$archives/$file"; bytes=$((bytes + size)); }
done < <(cat to-unpack to-pick)

if ((bytes)); then
    say "fetching $(((bytes + 999999) / 1000000)) MB for: ${missing[*]} ..."
    if [[ -s to-unpack ]]; then
        apt_get --download-only install "${wanted[@]}" >>"$log" 2>&1 || failed "fetching the i386 packages"
    fi
    while read -r file size sum; do
        is_whole "$file" "$sum" && continue
        # It lands in this folder.
        apt_get download "${file%%_*}" >>"$log" 2>&1 && mv "$file" archives/ || failed "fetching ${file%%_*}"
    done <to-pick
fi
while read -r file size sum; do
    is_whole "$file" "$sum" || failed "fetching $file"
done < <(cat to-unpack to-pick)

ready=()
for part in "${known[@]}"; do if is_ready "$part"; then ready+=("$part"); fi; done
rm -f "$kaz"/ready/*

# take_packages: unpacks what is to be linked and run; not documents, translations, programs, nor static libraries with a
# shared twin. Copyright files stay, since `./kaz package` hands the libraries on.
take_packages() {
    local -a debs
    mapfile -t debs < <(awk '{print $1}' to-unpack)
    ((${#debs[@]})) || return 0
    status_without "${debs[@]%%_*}" >status.new
    mv status.new status
    # shellcheck disable=SC2016
    printf '%s\0' "${debs[@]}" | xargs -0 -n 1 -P "$(nproc)" bash -c '
        set -o pipefail
        dpkg-deb --fsys-tarfile "archives/$2" | tar -x -C "$1" --no-same-owner --keep-directory-symlink \
            --exclude="./usr/share/locale/*" --exclude="./usr/share/man/*" --exclude="./usr/share/info/*" \
            --exclude="./usr/share/doc/*/*.gz" --exclude="./usr/share/doc/*/examples" --exclude="./usr/share/lintian" \
            --exclude="./bin/*" --exclude="./sbin/*" --exclude="./usr/bin/*" --exclude="./usr/sbin/*" \
            --exclude="libgnustep-base.a" --exclude="libc.a" --exclude="lib*san.a" --exclude="libstdc++.a"' \
        unpack "$sysroot" || return
    # Links that name the machine's own root must stay inside the sysroot.
    find "$sysroot" -type l -lname '/*' -print0 | while IFS= read -r -d '' link; do
        ln -sfnr "$sysroot$(readlink "$link")" "$link"
    done
    # Valgrind needs the loader's symbols, and looks beside the loader.
    if [[ -d "$sysroot/usr/lib/debug/.build-id" ]]; then
        mkdir -p "$sysroot/lib/i386-linux-gnu/.debug"
        find "$sysroot/usr/lib/debug/.build-id" -name '*.debug' \
            -exec mv -f -t "$sysroot/lib/i386-linux-gnu/.debug" {} + || return
        rm -rf "$sysroot/usr/lib/debug"
    fi
    { cat status; for deb in "${debs[@]}"; do
        dpkg-deb -f "archives/$deb" | sed '1a Status: install ok installed' || return
        echo
    done; } >status.new && mv status.new status
}

# take_files: picks single files out of packages.
take_files() {
    local part kind package patterns line
    local -a pick
    for line in "${files[@]}"; do
        read -r part kind package patterns <<<"$line"
        case "$kind" in
        headers) pick=(-C "$sysroot") ;;
        photos) pick=(-C "$photos" --transform='s,.*/,,') ;;
        measured) pick=(-C "$measured" --transform='s,.*/,,') ;;
        esac
        set -f # the patterns are tar's
        # shellcheck disable=SC2086
        dpkg-deb --fsys-tarfile "archives/$(grep "^${package}_" to-pick | awk '{print $1}')" |
            tar -x --no-same-owner --wildcards --no-wildcards-match-slash "${pick[@]}" $(printf './%s ' $patterns) || return
        set +f
        printf '%s\n' "$line" >>"$done_files"
    done
}

say "unpacking ..."
take_packages 2>>"$log" && take_files 2>>"$log" || failed "unpacking"
rm -rf nothing archives/*.deb to-unpack to-pick
# A mark is on the disk only after what it stands for.
sync -f "$kaz"
for part in "${ready[@]}" "${missing[@]}"; do mark "$part" >"$kaz/ready/$part"; done
say "the set-up is complete: ${missing[*]}"
