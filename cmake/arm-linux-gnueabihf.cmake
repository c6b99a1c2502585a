# The instrument's processor: 32-bit ARM, hard float, by Debian's cross compiler, and with Debian's own libraries for it
# (dpkg --add-architecture armhf). What is built runs here too, as do the programs that it starts: the kernel hands them
# to qemu (binfmt_misc).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_STRIP arm-linux-gnueabihf-strip)
