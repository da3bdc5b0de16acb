# Debian's cross compiler for 32-bit ARM, libraries from the folder that packaging/arm/make-sysroot fills, and qemu to run the
# result.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(armhf arm-linux-gnueabihf)
set(armhf_sysroot ${CMAKE_CURRENT_LIST_DIR}/../build/armhf-sysroot)

set(CMAKE_C_COMPILER ${armhf}-gcc)
set(CMAKE_CXX_COMPILER ${armhf}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${armhf})

# GCC 7 changed how some arguments are passed and warns of it. Nothing here was built with an older one.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)

# The C library is the compiler's own; the folder adds the other libraries.
set(library_folder ${armhf_sysroot}/usr/lib/${armhf})
set(CMAKE_PREFIX_PATH ${armhf_sysroot}/usr)
set(CMAKE_EXE_LINKER_FLAGS_INIT -Wl,-rpath-link,${library_folder}:${armhf_sysroot}/lib/${armhf})
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${CMAKE_EXE_LINKER_FLAGS_INIT})
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${armhf_sysroot})
set(ENV{PKG_CONFIG_LIBDIR} ${library_folder}/pkgconfig:${armhf_sysroot}/usr/share/pkgconfig)

set(CMAKE_CROSSCOMPILING_EMULATOR
    qemu-arm -L /usr/${armhf} -E LD_LIBRARY_PATH=${library_folder}:${armhf_sysroot}/lib/${armhf})
