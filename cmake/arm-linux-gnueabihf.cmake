# The instrument's processor: 32-bit ARM, hard float, by Debian's cross compiler and the libraries that come with it.
# What is built runs here too: qemu by name runs the tests and what the build itself needs, and programs that those start
# are handed to it by the kernel (binfmt_misc). All find their libraries beside the compiler's; the same libraries of
# another version, which a machine may have in its own folders, would not go with that loader.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_STRIP arm-linux-gnueabihf-strip)
set(compilers /usr/arm-linux-gnueabihf)
set(CMAKE_CROSSCOMPILING_EMULATOR
    qemu-arm-static -L ${compilers} -E QEMU_LD_PREFIX=${compilers} -E LD_LIBRARY_PATH=${compilers}/lib)
