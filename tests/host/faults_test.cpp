#include <dpm/administration.h>
#include <dpm/password.h>
#include <service_app.h>
#include <vconf.h>

#include <functional>

#include "host_test.h"
#include "platform_owners.h"

namespace {

constexpr int refused = -13;

/// Sets what a function of this process's platform is to answer, as another process would, and lets the news arrive.
class Faults : public HostTest {
protected:
    /// Runs a test's body as what an application does when it is brought up.
    static void asApplication(std::function<void()> body) {
        service_app_lifecycle_callback_s callbacks{};
        callbacks.create = [](void* data) {
            (*static_cast<std::function<void()>*>(data))();
            service_app_exit();
            return true;
        };
        char program[] = "host-test";
        char* arguments[] = {program, nullptr};
        EXPECT_EQ(service_app_main(1, arguments, &callbacks, &body), 0);
    }

    Faults() { dpm_admin_register_client(manager(), deskId, 1000); }

    device_policy_manager_h manager() const { return manager_.get(); }

    int setQuality() const { return dpm_password_set_quality(manager(), 128); }

    static void set(const std::string& function, int code, int nth = 0) {
        writeSetting("/faults/" + std::string(deskId) + "/" + function, g_variant_new("(ii)", code, nth));
    }

    /// The faults of all applications.
    static void clear() { writeSetting("/faults/", nullptr); }

private:
    const ManagerOwner manager_{dpm_manager_create()};
};

TEST_F(Faults, FunctionAnswersTheCodeAndDoesNothingUntilItIsCleared) {
    asApplication([&] {
        set("dpm_password_set_quality", refused);
        EXPECT_TRUE(runMainLoopUntil([&] { return setQuality() == refused; }));
        int quality = -1;
        dpm_password_set_minimum_length(manager(), 6);
        EXPECT_EQ(dpm_password_get_minimum_length(manager(), &quality), DPM_ERROR_NONE);
        EXPECT_EQ(quality, 6) << "no other function is affected";

        clear();

        EXPECT_TRUE(runMainLoopUntil([&] { return setQuality() == DPM_ERROR_NONE; }));
    });
}

TEST_F(Faults, OnlyTheNthCallFails) {
    asApplication([&] {
        set("dpm_password_get_history", refused);
        set("dpm_password_set_quality", refused, 2);
        int history = 0;
        EXPECT_TRUE(runMainLoopUntil([&] { return dpm_password_get_history(manager(), &history) == refused; }))
            << "the news of it, and of the change after it";
        set("vconf_set_int", refused);
        EXPECT_TRUE(runMainLoopUntil([&] { return vconf_set_int("db/test/number", 1) == refused; }));

        EXPECT_EQ(setQuality(), DPM_ERROR_NONE);
        set("vconf_set_str", refused);
        EXPECT_TRUE(runMainLoopUntil([&] { return vconf_set_str("db/test/text", "text") == refused; }));
        EXPECT_EQ(setQuality(), refused) << "the calls before another fault are counted too";
        EXPECT_EQ(setQuality(), DPM_ERROR_NONE);
    });
}

TEST_F(Faults, FunctionThatAnswersAPointerAnswersNull) {
    asApplication([&] {
        vconf_set_str("db/test/text", "text");
        set("vconf_get_str", refused);
        EXPECT_TRUE(runMainLoopUntil([] { return taken(vconf_get_str("db/test/text")) == "(null)"; }));
    });
}

TEST_F(Faults, FaultOfAnotherApplicationHasNoEffectHere) {
    asApplication([&] {
        writeSetting("/faults/" + std::string(appId) + "/dpm_password_set_quality", g_variant_new("(ii)", refused, 0));
        set("vconf_set_int", refused);
        EXPECT_TRUE(runMainLoopUntil([&] { return vconf_set_int("db/test/number", 1) == refused; }));
        EXPECT_EQ(setQuality(), DPM_ERROR_NONE);
    });
}

TEST_F(Faults, NothingFailsOutsideTheApplicationsRun) {
    asApplication([&] {
        set("dpm_password_set_quality", refused);
        EXPECT_TRUE(runMainLoopUntil([&] { return setQuality() == refused; }));
    });
    EXPECT_EQ(setQuality(), DPM_ERROR_NONE);
}

} // namespace
