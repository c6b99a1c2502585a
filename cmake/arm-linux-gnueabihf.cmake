# The instrument's processor: 32-bit ARM, hard float, by Debian's cross compiler and its libraries. qemu runs the tests and
# the programs that the build itself needs; the kernel starts the programs that those start by qemu too (binfmt_misc).
# All take the cross compiler's libraries; the ARM libraries of the machine's own folders may be of another version, which
# does not fit that loader. scripts/arm.sh unpacks what has no cross package in /usr/local/arm-linux-gnueabihf.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_STRIP arm-linux-gnueabihf-strip)
set(compilers /usr/arm-linux-gnueabihf)
set(libraries /usr/local/arm-linux-gnueabihf)
set(CMAKE_FIND_ROOT_PATH ${libraries})
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES ${libraries}/usr/include)
set(CMAKE_CROSSCOMPILING_EMULATOR
    qemu-arm-static -L ${compilers} -E QEMU_LD_PREFIX=${compilers} -E LD_LIBRARY_PATH=${compilers}/lib
    -E GCONV_PATH=${libraries}/usr/lib/arm-linux-gnueabihf/gconv)
