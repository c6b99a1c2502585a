# The instrument's processor: 32-bit ARM, hard float, by Debian's cross compiler and its libraries. qemu runs the tests and
# the programs that the build itself needs; the kernel starts the programs that those start by qemu too (binfmt_misc).
# All take the cross compiler's libraries; the ARM libraries of the machine's own folders may be of another version, which
# does not fit that loader. The converters between encodings come from another package (scripts/arm.sh).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_STRIP arm-linux-gnueabihf-strip)
set(compilers /usr/arm-linux-gnueabihf)
set(CMAKE_CROSSCOMPILING_EMULATOR
    qemu-arm-static -L ${compilers} -E QEMU_LD_PREFIX=${compilers} -E LD_LIBRARY_PATH=${compilers}/lib
    -E GCONV_PATH=/usr/local/lib/arm-linux-gnueabihf/gconv)
