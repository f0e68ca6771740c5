# shellcheck shell=bash
# What scripts/demo and scripts/test share. Sourced, not run.

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
    for name in "$@"; do lists+=("$root/scripts/$name"); done
    [ -x "$(command -v apt-get)" ] ||
        die "needs Debian's apt-get; elsewhere install what scripts/packages.txt names by hand"
    missing=$(missing_packages "${lists[@]}" | tr '\n' ' ')
    [ -n "$missing" ] || return 0
    [ "$(id -u)" -eq 0 ] || command -v sudo >/dev/null ||
        die "neither root nor sudo; as root run: apt-get install $missing"
    say "installing with apt-get (once, it may take some minutes): $missing"
    mkdir -p "$root/build"
    # shellcheck disable=SC2086  # one word a package
    run_logged install as_root sh -c \
        'apt-get update && apt-get install -y --no-install-recommends "$@"' sh $missing
}

# Runs a command with its output in build/NAME.log and shows the log only when it fails.
run_logged()
{
    local log=$root/build/$1.log
    shift
    if ! "$@" >"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        die "failed: $* (the output above is in $log)"
    fi
}

# Configures a preset and builds the given targets in it; says so only when there is work.
build()
{
    local preset=$1
    shift
    mkdir -p "$root/build"
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
