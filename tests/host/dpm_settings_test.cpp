#include <dpm/administration.h>

#include "host_test.h"
#include "platform_owners.h"

namespace {

class DpmSettings : public HostTest {};

TEST_F(DpmSettings, ClientWhoseUserIsNoNumberDoesNotEnd) {
    const ManagerOwner manager(dpm_manager_create());
    EXPECT_EQ(dpm_admin_register_client(manager.get(), "com.example.client", 1000), DPM_ERROR_NONE);
    writeSetting("/dpm/clients/com.example.client", g_variant_new_string("1000"));
    EXPECT_EQ(dpm_admin_deregister_client(manager.get(), "com.example.client", 1000), DPM_ERROR_NOT_PERMITTED);
}

} // namespace
