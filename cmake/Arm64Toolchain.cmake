# Debian's cross compiler for 64-bit Arm (g++-aarch64-linux-gnu). What it builds runs under qemu-user (CTest does that by itself).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64;-L;/usr/aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)

# The libraries that this project uses as headers are described by the building machine's packages.
execute_process(COMMAND g++ -print-multiarch OUTPUT_VARIABLE host OUTPUT_STRIP_TRAILING_WHITESPACE)
list(APPEND CMAKE_PREFIX_PATH /usr/lib/${host}/cmake)
