# A fresh Debian 12 in a folder, for root. Sourced after library.sh.

# The base is made once and kept below build/, so that later runs need no mirror for it.
make_debian() {  # FOLDER [PACKAGE]: with nothing but the essential packages, apt and the named one
    local base=$root/build/debian-12${2:+-$2}
    if [[ $(id -u) -ne 0 ]]; then
        echo "Only root can make a fresh Debian" >&2
        return 1
    fi
    need_packages debootstrap=debootstrap || return 1
    [[ -e $base.complete ]] || retry bootstrap "$base" "${@:2}" >"$base.log" 2>&1 ||
        { tail "$base.log" >&2; return 1; }
    rm -rf --one-file-system "$1"
    cp -a "$base" "$1"
}

bootstrap() {  # FOLDER [PACKAGE]
    local mirror
    mirror=$(cat /etc/apt/sources.list /etc/apt/sources.list.d/* 2>/dev/null |
        awk '!/security|^ *#/ && match($0, /https?:[^ ]+/) && !found++ { print substr($0, RSTART, RLENGTH) }') || true
    rm -rf --one-file-system "$1"
    debootstrap --variant=minbase ${2:+"--include=$2"} bookworm "$1" "${mirror:-http://deb.debian.org/debian}" &&
        touch "$1.complete"
}
