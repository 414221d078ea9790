# Debian's cross compiler for CMAKE_SYSTEM_PROCESSOR (g++-aarch64-linux-gnu and the like), set by the file that includes this one. What it
# builds runs under qemu-user (CTest does that by itself).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER ${CMAKE_SYSTEM_PROCESSOR}-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${CMAKE_SYSTEM_PROCESSOR};-L;/usr/${CMAKE_SYSTEM_PROCESSOR}-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)

# The libraries that this project uses as headers are described by the building machine's packages.
execute_process(COMMAND g++ -print-multiarch OUTPUT_VARIABLE host OUTPUT_STRIP_TRAILING_WHITESPACE)
list(APPEND CMAKE_PREFIX_PATH /usr/lib/${host}/cmake)
