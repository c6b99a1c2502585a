# The tests of the build for the instrument's processor, run by qemu. Sourced after library.sh by ./test, whose functions
# it uses, and by Packaging/test-package.

# As in cmake/arm-linux-gnueabihf.cmake.
compilers=/usr/arm-linux-gnueabihf
libraries=/usr/local/arm-linux-gnueabihf
qemu_arm=(qemu-arm-static -L "$compilers" -E "QEMU_LD_PREFIX=$compilers" -E "LD_LIBRARY_PATH=$compilers/lib"
    -E "GCONV_PATH=$libraries/usr/lib/arm-linux-gnueabihf/gconv")

arm_needs() {
    need_packages arm-linux-gnueabihf-g++=g++-arm-linux-gnueabihf qemu-arm-static=qemu-user-static \
        update-binfmts=binfmt-support $compilers/include/stdio.h=libc6-dev-armhf-cross \
        /usr/src/googletest/CMakeLists.txt=googletest || return 1
    # Of libc6 only the converters between encodings (gconv), which the cross package lacks.
    need_libraries lib/arm-linux-gnueabihf/gconv/gconv-modules=libc6 include/CLI/CLI.hpp=libcli11-dev \
        lib/arm-linux-gnueabihf/libpugixml.so.1=libpugixml1v5 include/pugixml.hpp=libpugixml-dev
}

# Unpacks packages of armhf that have no cross package. Installed normally, they would bring armhf's libc6, which needs a
# libc6 of this machine of the very same version.
need_libraries() {  # FILE=PACKAGE...
    local row missing=()
    for row in "$@"; do
        [[ -e $libraries/usr/${row%%=*} ]] || missing+=("${row#*=}")
    done
    [[ ${#missing[@]} -eq 0 ]] && return 0
    if [[ $(id -u) -ne 0 ]]; then
        echo "Missing in $libraries: ${missing[*]}. As root: ./test --arm-units" >&2
        return 1
    fi
    echo "Unpacking ${missing[*]} for armhf in $libraries" >&2
    retry unpack_libraries "${missing[@]}"
}

unpack_libraries() {  # PACKAGE...
    local work result=0
    work=$(mktemp -d /tmp/armhf.XXXXXX)
    mkdir "$work/tree"
    [[ ! -d $libraries ]] || cp -a "$libraries/." "$work/tree"
    download_armhf "$work" "$@" && find "$work" -maxdepth 1 -name '*.deb' -exec dpkg-deb -x {} "$work/tree" ';' &&
        rm -rf "$libraries" && mv "$work/tree" "$libraries" || result=1
    rm -rf "$work"
    return "$result"
}

# Uses its own package lists, so that this machine's apt does not learn another architecture.
download_armhf() {  # FOLDER PACKAGE...
    local folder=$1
    local options=(-o APT::Architecture=armhf -o APT::Architectures=armhf -o Dir::State::lists="$folder/lists"
        -o Dir::State::status="$folder/status" -o Dir::Cache="$folder/cache" -o APT::Sandbox::User=root)
    mkdir -p "$folder/lists/partial" "$folder/cache/archives/partial" && touch "$folder/status" || return 1
    "${apt[@]}" "${options[@]}" update >&2 || echo "Continuing with the package lists that could be read" >&2
    (cd "$folder" && "${apt[@]}" "${options[@]}" download "${@:2}" >&2)
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
