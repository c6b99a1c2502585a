# What the scripts at the root share. Sourced by absolute path or from the root.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# Prints the comment at the top of the calling script and exits, if an argument is -h or --help.
help_if_asked() {  # ARGUMENT...
    [[ " $* " == *" -h "* || " $* " == *" --help "* ]] || return 0
    sed -n '2,/^[^#]/{s/^#$//p;s/^# //p}' "$0"
    exit 0
}

# Mirrors fail temporarily: retries twice, after a pause.
retry() {  # COMMAND...
    local pause
    for pause in 10 30; do
        "$@" && return 0
        echo "Retrying in $pause s: $*" >&2
        sleep "$pause"
    done
    "$@"
}

# Installs the packages whose command or file is missing; without root rights says what to install. It does not call apt
# if nothing is missing.
need_packages() {  # COMMAND_OR_FILE=PACKAGE...
    local row missing=()
    for row in "$@"; do
        local thing=${row%%=*} package=${row#*=}
        if [[ $thing == /* ]]; then
            compgen -G "$thing" >/dev/null || missing+=("$package")
        else
            command -v "$thing" >/dev/null || missing+=("$package")
        fi
    done
    [[ ${#missing[@]} -eq 0 ]] && return 0
    if [[ $(id -u) -ne 0 ]]; then
        echo "Missing: ${missing[*]}. As root: apt-get install ${missing[*]}" >&2
        return 1
    fi
    echo "Installing ${missing[*]}" >&2
    retry install_packages "${missing[@]}"
}

apt=(apt-get -qq -o Acquire::Retries=3 -o DPkg::Lock::Timeout=300)

install_packages() {  # PACKAGE...
    export DEBIAN_FRONTEND=noninteractive
    # A list that is unavailable now may not be needed.
    "${apt[@]}" update >&2 || echo "Continuing with the present package lists" >&2
    "${apt[@]}" install -y --no-install-recommends "$@" >/dev/null
}

# The packages that building the analyzer, the bench and the tests needs. Arguments: further rows.
need_build_packages() {  # [COMMAND_OR_FILE=PACKAGE...]
    need_packages g++=g++ cmake=cmake ninja=ninja-build '/usr/lib/*/libgtest.a=libgtest-dev' \
        '/usr/lib/*/libgmock.a=libgmock-dev' /usr/include/CLI/CLI.hpp=libcli11-dev \
        /usr/include/pugixml.hpp=libpugixml-dev "$@"
}

# Runs a build with its output in build/SCRIPT-build.log. If it fails, prints the end of the log and exits with status 2.
logged_build() {  # SCRIPT COMMAND...
    local script=$1 log=$root/build/$1-build.log
    shift
    mkdir -p "$root/build"
    # One at a time: a second script may be started in another terminal.
    if ! (flock 9 && cd "$root" && "$@") 9>"$root/build/build.lock" >"$log" 2>&1; then
        tail -n 20 "$log" >&2
        echo "$script: the build failed; full output in build/$script-build.log" >&2
        exit 2
    fi
}

build_preset() { cmake --preset "$1" >/dev/null && cmake --build --preset "$1" --target "${@:2}"; }  # PRESET TARGET...

# Builds the analyzer and one program of the bench for the script of that name.
build_bench() {  # SCRIPT
    need_build_packages || exit 2
    [[ -x $root/build/release/bench-$1 ]] || echo "Building the analyzer; the first time takes a minute or two" >&2
    logged_build "$1" build_preset release vernicor board "bench-$1"
}
