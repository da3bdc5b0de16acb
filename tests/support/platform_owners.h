#ifndef TESTS_PLATFORM_OWNERS_H
#define TESTS_PLATFORM_OWNERS_H

#include <app_control.h>
#include <bundle.h>
#include <dpm/device-policy-manager.h>

#include <cstdlib>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "c_owners.h"

using AppControlOwner = c::Owner<app_control_s, app_control_destroy>;
using BundleOwner = c::Owner<bundle, bundle_free>;
using ManagerOwner = c::Owner<std::remove_pointer_t<device_policy_manager_h>, dpm_manager_destroy>;

/// A launch request without content.
inline AppControlOwner newAppControl() {
    app_control_h created = nullptr;
    app_control_create(&created);
    return AppControlOwner(created);
}

/// A message with these entries, in order.
inline BundleOwner bundleOf(const std::vector<std::pair<std::string, std::string>>& entries) {
    BundleOwner message(bundle_create());
    for (const auto& [key, value] : entries) {
        bundle_add_str(message.get(), key.c_str(), value.c_str());
    }
    return message;
}

/// The content of a text that a function of the platform handed over, which is released; "(null)" for none.
inline std::string taken(char* text) {
    const c::Owner<char, std::free> owner(text);
    return text != nullptr ? text : "(null)";
}

#endif
