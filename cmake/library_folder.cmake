# Programs find the host platform relative to themselves, in the build tree as on a desk. CMake would pad a search path of the
# build tree with empty entries for the installation, and an empty entry means the current folder.
include(GNUInstallDirs)

# Two folders below lib: otherwise CPack adds a trigger that rebuilds the machine's library cache.
set(tesk_library_folder ${CMAKE_INSTALL_LIBDIR}/tesk-agent-desk/platform)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${tesk_library_folder})
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${tesk_library_folder}")
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
