#include <gtest/gtest.h>

#include "contract_environment.h"

namespace {

class PlatformEnvironment : public testing::Environment {
public:
    void SetUp() override { contract::setUp(); }
    void TearDown() override { contract::tearDown(); }
};

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::AddGlobalTestEnvironment(new PlatformEnvironment); // gtest owns it
    return RUN_ALL_TESTS();
}
