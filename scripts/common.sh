# shellcheck shell=bash
# What the scripts share. Sourced, not run.

set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
program=scripts/$(basename "$0")

say() { printf '%s: %s\n' "$program" "$*"; }

die()
{
    printf '%s: %s\n' "$program" "$*" >&2
    exit 1
}

usage_error()
{
    printf '%s: %s\n' "$program" "$*" >&2
    exit 2
}

# Prints the script's head as help, when that is what its arguments ask for, and ends it.
help_asked()
{
    [ "${1-}" = --help ] || [ "${1-}" = -h ] || return 0
    sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"
    exit 0
}

# Everything that a script writes goes to build/, which one script has to itself while it runs,
# together with the scripts that it calls.
need_build_dir()
{
    [ "${ORVO_BUILD_DIR_HELD-}" != "$root/build" ] || return 0
    if ! mkdir -p "$root/build" 2>/dev/null || [ ! -w "$root/build" ]; then
        die "cannot write to $root/build: is the checkout read-only? Copy it to a place of your own"
    fi
    exec 9>>"$root/build/.lock"
    if ! flock --nonblock 9; then
        say "waiting for another script that uses $root/build"
        flock 9
    fi
    export ORVO_BUILD_DIR_HELD=$root/build
}

# Prints the packages of the given lists that are not installed.
missing_packages()
{
    local name
    grep -hv -e '^#' -e '^$' "$@" | sort -u | while read -r name; do
        dpkg-query -W -f '${Status}' "$name" 2>/dev/null | grep -q 'install ok installed' ||
            printf '%s\n' "$name"
    done
}

as_root()
{
    if [ "$(id -u)" -eq 0 ]; then
        env DEBIAN_FRONTEND=noninteractive "$@"
    else
        sudo env DEBIAN_FRONTEND=noninteractive "$@"
    fi
}

# Installs what is missing from the package lists scripts/packages*.txt given by name.
install_packages()
{
    local lists=() missing
    local name
    need_build_dir
    for name in "$@"; do lists+=("$root/scripts/$name"); done
    [ -x "$(command -v apt-get)" ] ||
        die "needs Debian's apt-get; elsewhere install what scripts/packages.txt names by hand"
    missing=$(missing_packages "${lists[@]}" | tr '\n' ' ')
    [ -n "$missing" ] || return 0
    [ "$(id -u)" -eq 0 ] || command -v sudo >/dev/null ||
        die "neither root nor sudo; as root run: apt-get install $missing"
    say "installing with apt-get (once, it may take some minutes): $missing"
    # shellcheck disable=SC2086  # one word a package
    try_logged install as_root sh -c \
        'apt-get update && apt-get install -y --no-install-recommends "$@"' sh $missing ||
        die "apt-get cannot provide all of: $missing(why is in $root/build/install.log; is the" \
            "network up, and does /etc/apt name a Debian 12 archive?)"
}

# Runs a command with its output in build/NAME.log.
try_logged()
{
    local log=$root/build/$1.log
    shift
    need_build_dir
    "$@" >"$log" 2>&1 </dev/null
}

# The same, and shows the log when the command fails.
run_logged()
{
    if ! try_logged "$@"; then
        cat "$root/build/$1.log" >&2
        die "failed: ${*:2} (the output above is in $root/build/$1.log)"
    fi
}

# Configures a preset and builds the given targets in it; says so only when there is work.
build()
{
    local preset=$1
    shift
    need_build_dir
    cd "$root"
    run_logged "configure-$preset" cmake --preset "$preset" -DORVO_WERROR="${CI:+ON}"
    if ! ninja -C "build/$preset" -n "$@" | grep -q 'no work to do'; then
        say "building in build/$preset (a minute or two the first time)"
        run_logged "build-$preset" ninja -C "build/$preset" "$@"
    fi
}

# Qt wants a private runtime directory and warns at every start of a program without one.
use_private_runtime_dir()
{
    [ -n "${XDG_RUNTIME_DIR:-}" ] && return 0
    mkdir -p "$root/build/runtime"
    chmod 700 "$root/build/runtime"
    export XDG_RUNTIME_DIR=$root/build/runtime
}
