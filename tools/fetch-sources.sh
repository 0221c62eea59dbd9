#!/usr/bin/env bash
# Fetches the public sources that orvane-databuild turns into Orvane's star
# catalogue files:
#
#   DEST/tycho2/          the Tycho-2 catalogue (ESA/CDS I/259): tyc2.dat.00-19,
#                         suppl_1.dat, suppl_2.dat, index.dat, ReadMe
#   DEST/stellarium-data/ the unpacked stellarium-data package (cross
#                         identifications HIP-SAO-HD-HR, star names, GCVS and
#                         WDS HIP lists, Hipparcos-based star catalogues)
#   DEST/kstars-data/     the unpacked kstars-data package (star names)
#
# Everything comes through the machine's own package configuration: the
# Debian sources listed in /etc/apt are read, a matching "deb-src" list is
# written into a private folder (DEST/apt), and apt runs against that private
# state, cache and list folder only, so the system's apt configuration and
# package lists are never changed.
#
# Usage: tools/fetch-sources.sh [--tycho2-dir DIR] DEST
#   --tycho2-dir DIR  use the Tycho-2 files already in DIR (tyc2.dat.00-19 or
#                     tyc2.dat, suppl_1.dat, index.dat; plain or .gz) instead
#                     of fetching the Debian source package.
#
# The script may be run again at any time: finished steps are skipped, and an
# interrupted step is redone.
set -euo pipefail

prog=$(basename "$0")
say() { printf '%s: %s\n' "$prog" "$*"; }
die() { printf '%s: error: %s\n' "$prog" "$*" >&2; exit 1; }

usage() {
    sed -n '/^# Usage:/,/^# *$/p' "$0" | sed 's/^# \{0,1\}//' >&2
    exit 2
}

tycho2_dir=""
dest=""
while [[ $# -gt 0 ]]; do
    case "$1" in
        --tycho2-dir) [[ $# -ge 2 ]] || usage; tycho2_dir=$2; shift 2 ;;
        --tycho2-dir=*) tycho2_dir=${1#*=}; shift ;;
        -h|--help) usage ;;
        -*) printf '%s: unknown option %s\n' "$prog" "$1" >&2; usage ;;
        *) [[ -z "$dest" ]] || usage; dest=$1; shift ;;
    esac
done
[[ -n "$dest" ]] || usage

mkdir -p "$dest" || die "cannot create $dest"
dest=$(cd "$dest" && pwd)

for tool in apt-get dpkg-deb tar xz; do
    command -v "$tool" >/dev/null 2>&1 || die "'$tool' is needed but not installed"
done

# ---------------------------------------------------------------------------
# Private apt configuration derived from the system's.
# ---------------------------------------------------------------------------
apt_root=$dest/apt
apt_opts=(
    -o "Dir::State=$apt_root/state"
    -o "Dir::State::status=/var/lib/dpkg/status"
    -o "Dir::Cache=$apt_root/cache"
    -o "Dir::Etc::SourceList=$apt_root/etc/sources.list"
    -o "Dir::Etc::SourceParts=$apt_root/etc/sources.list.d"
    -o "APT::Sandbox::User=root"
    -o "Debug::NoLocking=1"
)

# Writes the private source lists: every one-line "deb" entry gains a
# "deb-src" twin; every deb822 stanza whose Types include "deb" gains
# "deb-src". Other lines are copied unchanged.
write_private_sources() {
    local etc=$apt_root/etc
    rm -rf "$etc"
    mkdir -p "$etc/sources.list.d" "$apt_root/state/lists/partial" "$apt_root/cache/archives/partial"
    : >"$etc/sources.list"
    local f found=0
    if [[ -f /etc/apt/sources.list ]]; then
        one_line_with_src </etc/apt/sources.list >"$etc/sources.list"
        grep -q '^[[:space:]]*deb-src' "$etc/sources.list" && found=1
    fi
    shopt -s nullglob
    for f in /etc/apt/sources.list.d/*.list; do
        one_line_with_src <"$f" >"$etc/sources.list.d/$(basename "$f")"
        grep -q '^[[:space:]]*deb-src' "$etc/sources.list.d/$(basename "$f")" && found=1
    done
    for f in /etc/apt/sources.list.d/*.sources; do
        deb822_with_src <"$f" >"$etc/sources.list.d/$(basename "$f")"
        grep -qi '^Types:.*deb-src' "$etc/sources.list.d/$(basename "$f")" && found=1
    done
    shopt -u nullglob
    [[ $found -eq 1 ]] || die "no Debian package source found in /etc/apt/sources.list or /etc/apt/sources.list.d"
}

one_line_with_src() {
    awk '
        { print }
        /^[[:space:]]*deb[[:space:]]/ { line = $0; sub(/deb/, "deb-src", line); src[++n] = line }
        /^[[:space:]]*deb-src[[:space:]]/ { have[$0] = 1 }
        END { for (i = 1; i <= n; ++i) if (!(src[i] in have)) print src[i] }
    '
}

deb822_with_src() {
    awk '
        tolower($0) ~ /^types:/ {
            if ($0 ~ /[[:space:]]deb([[:space:]]|$)/ && $0 !~ /deb-src/) { print $0 " deb-src"; next }
        }
        { print }
    '
}

apt_ready=0
prepare_apt() {
    [[ $apt_ready -eq 1 ]] && return 0
    say "preparing a private package list in $apt_root (the system's apt state is not touched)"
    write_private_sources
    if ! apt-get "${apt_opts[@]}" -q update >"$apt_root/update.log" 2>&1; then
        cat "$apt_root/update.log" >&2
        die "apt-get update failed (see above)"
    fi
    apt_ready=1
}

# ---------------------------------------------------------------------------
# Tycho-2
# ---------------------------------------------------------------------------
tycho_files_present() {
    local d=$1 i
    [[ -f "$d/index.dat" && -f "$d/suppl_1.dat" ]] || return 1
    for i in $(seq -w 0 19); do [[ -f "$d/tyc2.dat.$i" ]] || return 1; done
}

# Copies (or decompresses) a user's Tycho-2 folder into DEST/tycho2.
import_tycho2_dir() {
    local src=$1 out=$dest/tycho2
    [[ -d "$src" ]] || die "--tycho2-dir $src is not a folder"
    src=$(cd "$src" && pwd)
    local tmp=$dest/tycho2.partial
    rm -rf "$tmp"; mkdir -p "$tmp"
    local name
    for name in index.dat suppl_1.dat suppl_2.dat ReadMe; do
        if [[ -f "$src/$name" ]]; then cp "$src/$name" "$tmp/"
        elif [[ -f "$src/$name.gz" ]]; then gzip -dc "$src/$name.gz" >"$tmp/$name"
        elif [[ $name == index.dat || $name == suppl_1.dat ]]; then die "$src holds no $name"
        fi
    done
    if [[ -f "$src/tyc2.dat" || -f "$src/tyc2.dat.gz" ]]; then
        say "splitting $src/tyc2.dat into 20 parts"
        local reader=(cat "$src/tyc2.dat"); [[ -f "$src/tyc2.dat" ]] || reader=(gzip -dc "$src/tyc2.dat.gz")
        # 2,539,913 lines, 127,000 per part as in the CDS distribution.
        "${reader[@]}" | (cd "$tmp" && split -d -a 2 -l 127000 - tyc2.dat.)
    else
        local i
        for i in $(seq -w 0 19); do
            if [[ -f "$src/tyc2.dat.$i" ]]; then cp "$src/tyc2.dat.$i" "$tmp/"
            elif [[ -f "$src/tyc2.dat.$i.gz" ]]; then gzip -dc "$src/tyc2.dat.$i.gz" >"$tmp/tyc2.dat.$i"
            else die "$src holds neither tyc2.dat nor tyc2.dat.$i"
            fi
        done
    fi
    rm -rf "$out"; mv "$tmp" "$out"
}

fetch_tycho2_package() {
    local work=$dest/download/tycho2
    mkdir -p "$work"
    local orig
    orig=$(ls "$work"/tycho2_*.orig.tar.* 2>/dev/null | head -n1 || true)
    if [[ -z "$orig" ]]; then
        prepare_apt
        say "downloading the Debian source package tycho2 (about 120 MB)"
        (cd "$work" && apt-get "${apt_opts[@]}" -q source --download-only tycho2) ||
            die "apt-get source tycho2 failed"
        orig=$(ls "$work"/tycho2_*.orig.tar.* 2>/dev/null | head -n1 || true)
        [[ -n "$orig" ]] || die "the tycho2 source package holds no original tarball"
    else
        say "tycho2 source already downloaded: $(basename "$orig")"
    fi
    say "unpacking $(basename "$orig") (takes a few seconds)"
    local tmp=$dest/tycho2.partial
    rm -rf "$tmp"; mkdir -p "$tmp"
    tar -xf "$orig" -C "$tmp" || die "cannot unpack $orig (damaged download? remove it and run again)"
    # The tarball holds one top folder; the catalogue files are inside it.
    local inner
    inner=$(dirname "$(find "$tmp" -name index.dat -print -quit)")
    [[ -n "$inner" && -f "$inner/index.dat" ]] || die "$orig holds no index.dat"
    local gz
    for gz in "$inner"/*.gz; do [[ -e "$gz" ]] && gzip -d "$gz"; done
    tycho_files_present "$inner" || die "$orig lacks some of tyc2.dat.00-19, suppl_1.dat, index.dat"
    rm -rf "$dest/tycho2"
    mv "$inner" "$dest/tycho2"
    rm -rf "$tmp"
}

if [[ -n "$tycho2_dir" ]]; then
    say "taking Tycho-2 from $tycho2_dir"
    import_tycho2_dir "$tycho2_dir"
elif tycho_files_present "$dest/tycho2"; then
    say "Tycho-2 already present in $dest/tycho2"
else
    fetch_tycho2_package
fi
tycho_files_present "$dest/tycho2" || die "Tycho-2 files incomplete in $dest/tycho2"

# ---------------------------------------------------------------------------
# Binary data packages, unpacked (never installed).
# ---------------------------------------------------------------------------
fetch_binary_package() {
    local pkg=$1 out=$dest/$1
    if [[ -f "$out/.complete" ]]; then
        say "$pkg already unpacked in $out"
        return 0
    fi
    local work=$dest/download/debs
    mkdir -p "$work"
    local deb
    deb=$(ls "$work/${pkg}_"*.deb 2>/dev/null | head -n1 || true)
    if [[ -z "$deb" ]]; then
        prepare_apt
        say "downloading the package $pkg"
        (cd "$work" && apt-get "${apt_opts[@]}" -q download "$pkg") || die "apt-get download $pkg failed"
        deb=$(ls "$work/${pkg}_"*.deb 2>/dev/null | head -n1 || true)
        [[ -n "$deb" ]] || die "apt-get download $pkg left no .deb file"
    fi
    say "unpacking $(basename "$deb")"
    rm -rf "$out.partial"; mkdir -p "$out.partial"
    dpkg-deb -x "$deb" "$out.partial" || die "cannot unpack $deb (damaged download? remove it and run again)"
    rm -rf "$out"; mv "$out.partial" "$out"
    basename "$deb" >"$out/.complete"
}

fetch_binary_package stellarium-data
fetch_binary_package kstars-data

say "all sources are in $dest"
say "next: orvane-databuild --sources $dest [--out DATA_FOLDER]"
