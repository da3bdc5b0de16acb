#ifndef FAKE_DEVICE_POLICY_H
#define FAKE_DEVICE_POLICY_H

#include <dpm/device-policy-manager.h>
#include <sys/types.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

struct __device_policy_manager_s {};

namespace fake {

/// What the device policy manager holds: its settings, its administrators and the handles that are open.
class DevicePolicy {
public:
    /// A setting is named as in its function: "quality", "wifi_state", "internal_storage_encryption" for the demand,
    /// "internal_storage_encrypted" for the state; "messaging_state sim1" for the messages of one SIM.
    std::map<std::string, int> settings;

    /// Name and user id of each administrator; while the caller is none, setters are refused.
    std::set<std::pair<std::string, uid_t>> clients;

    /// Without its daemon nothing is kept; getters answer what no one has set.
    bool hasDaemon = true;

    /// The types of the wipes that were carried out.
    std::vector<int> wipes;

    /// The handles that were created and not destroyed.
    std::set<device_policy_manager_h> handles;

    /// Lets the service administer the device, as when it registered in an earlier run.
    void registerService() { clients.emplace("com.velmor.tesk-agent", 5001); }

    /// Whether there is an administrator of that name.
    bool isClient(const std::string& name) const;

    /// Takes an administrator's registration back; the rules for the password go with the last one. False when there is
    /// none.
    bool endClient(const std::string& name, uid_t uid);

    /// A setting's value; a restriction that was never set allows, everything else is 0.
    int setting(const std::string& name) const;

    /// Allows or forbids the messages of a SIM; "*" stands for all and replaces what was said of single ones.
    void setMessaging(const std::string& sim, int allow);
    int messaging(const std::string& sim) const;
};

} // namespace fake

#endif
