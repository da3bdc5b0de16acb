# tesk-platform: the device's own libraries, found in its sysroot.
pkg_check_modules(DEVICE REQUIRED IMPORTED_TARGET
    capi-appfw-service-application capi-appfw-app-common capi-appfw-app-control capi-appfw-preference
    capi-message-port bundle vconf dpm dlog)
add_library(tesk-platform INTERFACE)
target_link_libraries(tesk-platform INTERFACE PkgConfig::DEVICE)
add_library(tesk-platform-headers ALIAS tesk-platform)
