# What packages are built with: checks of buffers by compiler and C library, and library calls that are resolved at the start and
# read-only from then on. The checks need an optimising compiler, so builds for debugging do without.
add_compile_options(
    $<$<CONFIG:Release>:-fstack-protector-strong>
    $<$<CONFIG:Release>:-U_FORTIFY_SOURCE>
    $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
add_link_options($<$<CONFIG:Release>:LINKER:-z,relro,-z,now>)
