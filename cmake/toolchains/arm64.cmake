# 64-bit ARM, with the compiler of Debian's g++-aarch64-linux-gnu.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static -L /usr/aarch64-linux-gnu)

# The cross compiler brings libraries that get no security updates. Those of the architecture itself get
# them; where they are not installed, the compiler's own are found.
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -dumpversion OUTPUT_VARIABLE version
                OUTPUT_STRIP_TRAILING_WHITESPACE)
foreach(folder /usr/lib/aarch64-linux-gnu /usr/lib/gcc/aarch64-linux-gnu/${version})
    add_link_options(-B${folder} -L${folder})
endforeach()
