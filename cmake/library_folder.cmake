# Programs find the host platform from where they lie themselves, in the build tree as on a desk. A search path of the
# build's own would be padded for its installation with empty entries, and those mean the current folder.
include(GNUInstallDirs)

# two folders below lib, or CPack has the machine's cache of libraries rebuilt for it
set(tesk_library_folder ${CMAKE_INSTALL_LIBDIR}/tesk-agent-desk/platform)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${tesk_library_folder})
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${tesk_library_folder}")
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
