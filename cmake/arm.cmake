# Debian's cross compiler for 32-bit ARM, libraries from the folder that packaging/arm/make-sysroot fills, and qemu to run the
# result. TESK_ARM names Debian's architecture: armel is what a watch's armv7l is, armhf its armv7hl.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TESK_ARM)
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)

if(TESK_ARM STREQUAL "armel")
    # Debian's libraries pass numbers in integer registers, as the watch does. The instructions are those of its processor.
    set(triplet arm-linux-gnueabi)
    set(processor_flags "-march=armv7-a -mfpu=neon -mfloat-abi=softfp")
elseif(TESK_ARM STREQUAL "armhf")
    set(triplet arm-linux-gnueabihf)
else()
    message(FATAL_ERROR "TESK_ARM is '${TESK_ARM}'; it must be armel or armhf")
endif()

set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${triplet})

# GCC 7 changed how some arguments are passed and warns of it. Nothing here was built with an older one.
set(CMAKE_C_FLAGS_INIT "${processor_flags}")
set(CMAKE_CXX_FLAGS_INIT "${processor_flags} -Wno-psabi")

# The C library is the compiler's own; the folder adds the other libraries.
set(sysroot ${CMAKE_CURRENT_LIST_DIR}/../build/${TESK_ARM}-sysroot)
set(library_folder ${sysroot}/usr/lib/${triplet})
set(CMAKE_PREFIX_PATH ${sysroot}/usr)
set(CMAKE_EXE_LINKER_FLAGS_INIT -Wl,-rpath-link,${library_folder}:${sysroot}/lib/${triplet})
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${CMAKE_EXE_LINKER_FLAGS_INIT})
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${sysroot})
set(ENV{PKG_CONFIG_LIBDIR} ${library_folder}/pkgconfig:${sysroot}/usr/share/pkgconfig)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../packaging/arm/run ${TESK_ARM})
