# The tests of the build for the instrument's processor, run by qemu. Sourced after library.sh by ./test, whose functions
# it uses, and by Packaging/test-package.

# As in cmake/arm-linux-gnueabihf.cmake.
compilers=/usr/arm-linux-gnueabihf
converters=/usr/local/lib/arm-linux-gnueabihf/gconv
qemu_arm=(qemu-arm-static -L "$compilers" -E "QEMU_LD_PREFIX=$compilers" -E "LD_LIBRARY_PATH=$compilers/lib"
    -E "GCONV_PATH=$converters")

arm_needs() {
    need_packages arm-linux-gnueabihf-g++=g++-arm-linux-gnueabihf qemu-arm-static=qemu-user-static \
        update-binfmts=binfmt-support $compilers/include/stdio.h=libc6-dev-armhf-cross \
        /usr/src/googletest/CMakeLists.txt=googletest &&
        need_converters
}

# Debian's cross packages lack libc's converters between encodings (gconv modules). The package of armhf has them, but
# installs only beside this machine's libc of the very same version. So only its modules are unpacked.
need_converters() {
    [[ ! -f $converters/gconv-modules ]] || return 0
    if [[ $(id -u) -ne 0 ]]; then
        echo "Missing: $converters. As root: ./test --arm-units" >&2
        return 1
    fi
    echo "Installing the converters of libc6:armhf in $converters" >&2
    retry install_converters
}

install_converters() {
    local work version
    work=$(mktemp -d /tmp/converters.XXXXXX)
    version=$(dpkg-query -W -f '${Version}' libc6-armhf-cross)
    version=${version%%-*}  # upstream's
    if download_converters "$work" && dpkg-deb -x "$work"/libc6_*.deb "$work/tree"; then
        if [[ $(dpkg-deb -f "$work"/libc6_*.deb Version) == "$version"-* ]]; then
            mkdir -p "${converters%/*}" && rm -rf "$converters" && mv "$work/tree/usr/lib/arm-linux-gnueabihf/gconv" "$converters"
        else
            echo "./test: libc6:armhf is not version $version, as libc6-armhf-cross is" >&2
        fi
    fi
    rm -rf "$work"
    [[ -f $converters/gconv-modules ]]
}

# With package lists of its own, so that this machine's apt does not learn another architecture.
download_converters() {  # FOLDER
    mkdir -p "$1/lists/partial" "$1/cache/archives/partial" && touch "$1/status" || return 1
    local options=(-o APT::Architecture=armhf -o APT::Architectures=armhf -o Dir::State::lists="$1/lists"
        -o Dir::State::status="$1/status" -o Dir::Cache="$1/cache" -o APT::Sandbox::User=root)
    "${apt[@]}" "${options[@]}" update >&2 || echo "Continuing with the package lists that could be read" >&2
    (cd "$1" && "${apt[@]}" "${options[@]}" download libc6 >&2)
}

# Returns whether the kernel starts ARM programs by qemu, as programs need that start others. Registers qemu if it can.
arm_programs_run() {
    local program=$compilers/lib/ld-linux-armhf.so.3
    "$program" --version >/dev/null 2>&1 && return 0
    [[ $(id -u) -eq 0 ]] || return 1
    [[ -e /proc/sys/fs/binfmt_misc/register ]] ||
        mount -t binfmt_misc binfmt_misc /proc/sys/fs/binfmt_misc 2>/dev/null || true
    update-binfmts --enable qemu-arm >/dev/null 2>&1 || true
    "$program" --version >/dev/null 2>&1
}

# Three cycles without noise, so that only the moments of the readings and the arithmetic make the values. A run that
# hangs in qemu (CONTRIBUTING.md) is repeated.
arm_cycles() {  # PRESET [WORD...]: the words go before the command
    local build=build/$1 attempt
    for attempt in 1 2 3; do
        # At low speed: qemu is ten times slower, and at a higher speed it would be late for a reading.
        timeout -k 10 600 "${@:2}" "$build/bench-run" --cycles 3 --chlorine 0.60 --seed 7 --noise off --speed 10 \
            --start "2026-12-31 12:00:00" --bench "$build/cycles" |
            grep '^result ' | tee "$build/cycles.txt"
        [[ $(wc -l <"$build/cycles.txt") -lt 3 ]] || break
        echo "Fewer than three cycles, attempt $attempt of 3"
    done
    cat "$build"/cycles/card/*_Measurement.csv >"$build/cycles.csv" && [[ $(wc -l <"$build/cycles.txt") -eq 3 ]]
}

# Computes absorbance and chlorine of each ARM record from its counts on this machine: equal to the sixth digit, the last
# one printed.
arm_arithmetic() {
    awk -F, -v constant=2.4 '$7 ~ /^[0-9]/ {
            absorbance = -log(($7 - $5) / ($6 - $5)) / log(10)
            here = sprintf("%.6f,%.6f", absorbance, constant * absorbance)
            ++records
            if ($3 "," $4 != here) { print "record " $8 ": " $3 "," $4 " on ARM, " here " here"; wrong = 1 }
        }
        END { if (records != 3) print records + 0 " records of 3"; exit wrong || records != 3 }' build/arm/cycles.csv
}

# Compares the results of ARM and of this machine. A reading some milliseconds earlier or later sees a little more or less
# color, which moves the chlorine by less than 0.0005 mg/l at this speed (Documentation/Bench.md).
arm_agreement() {
    paste -d ' ' build/arm/cycles.txt build/release/cycles.txt | awk '
        { difference = $4 - $20; if (difference < 0) difference = -difference }
        $2 != $18 || difference > 0.0005 { print "result " $2 ": " $4 " on ARM, " $20 " here"; wrong = 1 }
        END { exit wrong || NR != 3 }'
}

check_arm() {  # STAGE; sets line
    line="could not run"
    arm_needs || return 1
    if ! arm_programs_run; then
        echo "./test: the kernel does not start ARM programs by qemu, and binfmt_misc cannot be registered here." \
            "As root, on the host of a container: update-binfmts --enable qemu-arm" >&2
        return 1
    fi
    local result=0 cycles=agree labels=()
    [[ $1 == --arm ]] || labels=(-L units)
    build_and_test "$1" "${labels[@]}" || result=1
    { build_preset release "${product[@]}" -- --quiet; } >/dev/null &&
        arm_cycles arm "${qemu_arm[@]}" && arm_cycles release && arm_arithmetic && arm_agreement ||
        { cycles="do NOT agree" result=1; }
    line+="; its cycles $cycles with this machine's"
    return "$result"
}
