# What the scripts share; each reads it before anything else. No command of its own.
root=$(cd -- "$(dirname -- "$0")/.." >/dev/null && pwd)
command=${0##*/}

fail() { echo "$command: $*" >&2; exit 1; }

# The comment at the top of a script is its help.
usage() { sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"; }

# refuse REASON: for arguments that a script cannot take.
refuse() { echo "$command: $*; see script/$command --help" >&2; exit 2; }

# at_most COUNT "$@": refuses further arguments and options that there are none of.
at_most() {
    local count=$1 argument
    shift
    for argument in "$@"; do
        [[ $argument != -* ]] || refuse "unknown option '$argument'"
    done
    [ $# -le "$count" ] || refuse "unknown argument '${*:count+1:1}'"
}

# Configures the preset release for its programs, without the tests, unless it is configured already.
configure_programs() {
    [ -f "$root/build/release/build.ninja" ] || (cd "$root" && cmake --preset release -DORVA_BUILD_TESTS=OFF >/dev/null)
}

# Starts Wine, in build/windows/wine, until the script ends: one server for all that runs, and its services here, since a
# program that started them would lend them its output. Where a caller has done so, it is left to the caller. What runs under
# Wine is called with "${still[@]}" in front, where the system allows that: without it, one program in a thousand does not
# start, since its heap stands at random where Wine must have a certain page.
start_wine() {
    export WINEPREFIX=$root/build/windows/wine WINEDEBUG=-all
    still=(setarch -R)
    "${still[@]}" true 2>/dev/null || still=()
    mkdir -p "$WINEPREFIX"
    /usr/lib/wine/wineserver64 --persistent || return 0
    trap '/usr/lib/wine/wineserver64 --kill; hand_over "$root/build"' EXIT
    /usr/lib/wine/wine64 wineboot --init </dev/null >/dev/null 2>&1
}

# Under sudo, what is made here belongs to whoever called, not to root.
hand_over() {
    [ "$(id -u)" -ne 0 ] || [ -z "${SUDO_UID:-}" ] || [ ! -e "$1" ] ||
        chown -R --no-dereference --from=0 "$SUDO_UID:$SUDO_GID" "$1"
}
trap 'hand_over "$root/build"' EXIT

case ${1:-} in -h | --help) usage; exit ;; esac
