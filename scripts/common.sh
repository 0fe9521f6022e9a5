# What ./run and ./test share: packages, builds, and plain words when something fails.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '%s\n' "$*"; }

# Ends the script with one sentence.
fail() {
    printf '%s\n' "$*" >&2
    exit 1
}

# usageError SCRIPT OPTION
usageError() {
    printf '%s does not know "%s"; %s --help lists what it knows.\n' "$1" "$2" "$1" >&2
    exit 2
}

# A folder for logs and builds; says so when there can't be one.
makeFolder() {
    mkdir -p "$1" 2>/dev/null || true
    [[ -d $1 && -w $1 ]] ||
        fail "The folder $1 can't be written: the disk is full, or it belongs to somebody else."
}

# packagesOf SECTION...: the packages listed under these headings, one a line.
packagesOf() {
    local section
    for section in "$@"; do
        sed -n "/^\[$section\]/,/^\[/{/^[a-z0-9]/p}" "$root/scripts/packages"
    done | sort -u
}

# missingOf PACKAGE...: those that aren't installed.
missingOf() {
    local installed
    # dpkg-query fails when one of them is unknown to it, and still prints the others.
    # shellcheck disable=SC2016 # dpkg-query's own format
    installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "$@" 2>/dev/null |
        sed -n 's/^installed //p') || true
    printf '%s\n' "$@" | grep -Fxv -f <(printf '%s\n' "$installed") || true
}

# installPackages SECTION...: makes sure that the packages of these sections are there.
installPackages() {
    local wanted missing asRoot=() log
    mapfile -t wanted < <(packagesOf "$@")
    command -v dpkg-query >/dev/null ||
        fail "This is no Debian system; scripts/packages tells what has to be installed by hand."
    mapfile -t missing < <(missingOf "${wanted[@]}")
    ((${#missing[@]})) || return 0

    if ((EUID != 0)); then
        command -v sudo >/dev/null ||
            fail "Packages are missing; have root run: apt-get install --no-install-recommends ${missing[*]}"
        asRoot=(sudo)
        # Nobody is there to type a password.
        [[ -t 0 ]] || asRoot=(sudo -n)
        "${asRoot[@]}" true 2>/dev/null ||
            fail "sudo isn't allowed here; have root run: apt-get install --no-install-recommends ${missing[*]}"
    fi

    say "Installing ${#missing[@]} Debian packages."
    makeFolder "$root/build"
    log=$root/build/packages.log
    # A package source of somebody else that doesn't answer is no reason to stop: the installation
    # decides.
    "${asRoot[@]}" env LC_ALL=C apt-get -qq update >"$log" 2>&1 || true
    "${asRoot[@]}" env LC_ALL=C DEBIAN_FRONTEND=noninteractive apt-get -qq -y \
        -o DPkg::Lock::Timeout=120 install --no-install-recommends "${missing[@]}" \
        >>"$log" 2>&1 </dev/null || installFailed "$log"
}

installFailed() {
    if diskFull "$1" || grep -q "enough free space" "$1"; then
        fail "The disk is full: the Debian packages don't fit."
    elif grep -Eq "Temporary failure resolving|Could not resolve|Could not connect|Cannot initiate|timed out" "$1"; then
        fail "The Debian packages can't be fetched: there is no network, or the package server doesn't answer."
    elif grep -q "Unable to locate package" "$1"; then
        fail "This system's package sources don't have all of Debian 12: $(grep -m1 "Unable to locate" "$1")."
    fi
    fail "The Debian packages can't be installed: $(grep -m1 '^E:' "$1" || tail -n1 "$1") (see $1)"
}

# diskFull LOG: whether that is what the log is about; it may not have had room to tell.
diskFull() {
    grep -q "No space left on device" "$1" ||
        (($(df --output=avail -k "$(dirname "$1")" | tail -n 1) < 1024))
}

# build PRESET TARGET...: configures once and builds what changed into build/PRESET. When that fails,
# says which build it was and why, and returns 1. CMake settings for the first time stand in the
# array buildSettings.
buildSettings=()
build() {
    local preset=$1 folder=$root/build/$1 log=$root/build/$1.log pending
    shift
    makeFolder "$folder"
    cd "$root" || return 1
    if [[ ! -e $folder/build.ninja ]]; then
        cmake --preset "$preset" "${buildSettings[@]}" >"$log" 2>&1 ||
            { buildFailed "$preset" "$log" 'CMake Error' && return 1; }
    fi
    pending=$(ninja -C "$folder" -n "$@" 2>/dev/null | grep -v -e '^ninja' -e 'Re-checking' || true)
    if [[ $pending ]]; then
        say "Building build/$preset."
    fi
    ninja -C "$folder" -j "$(nproc)" "$@" >"$log" 2>&1 ||
        { buildFailed "$preset" "$log" 'error:|undefined reference|multiple definition' && return 1; }
}

# buildFailed PRESET LOG PATTERN: the first lines that tell why.
buildFailed() {
    if diskFull "$2"; then
        say "The disk is full: the build in build/$1 doesn't fit."
        return 0
    fi
    say "The build in build/$1 failed (all of it in build/$1.log):"
    { grep -E -m1 -A9 "$3" "$2" || tail -n 10 "$2"; } | sed 's/^/    /'
}
