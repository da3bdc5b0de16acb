#include <bundle.h>
#include <gtest/gtest.h>

#include "platform_owners.h"

namespace {

class BundleContract : public testing::Test {
protected:
    bundle* content() const { return bundle_.get(); }

private:
    const BundleOwner bundle_{bundle_create()};
};

TEST_F(BundleContract, GivesBackWhatWasAdded) {
    ASSERT_EQ(bundle_add_str(content(), "req", "req_update_policy"), BUNDLE_ERROR_NONE);

    char* value = nullptr;
    EXPECT_EQ(bundle_get_str(content(), "req", &value), BUNDLE_ERROR_NONE);
    EXPECT_STREQ(value, "req_update_policy");
}

TEST_F(BundleContract, KeepsAnEmptyText) {
    ASSERT_EQ(bundle_add_str(content(), "msg", ""), BUNDLE_ERROR_NONE);

    char* value = nullptr;
    EXPECT_EQ(bundle_get_str(content(), "msg", &value), BUNDLE_ERROR_NONE);
    EXPECT_STREQ(value, "");
}

TEST_F(BundleContract, MissingKeyIsNotAvailableAndLeavesTheTextAlone) {
    char anything[] = "anything";
    char* value = anything;
    EXPECT_EQ(bundle_get_str(content(), "req", &value), BUNDLE_ERROR_KEY_NOT_AVAILABLE);
    EXPECT_EQ(value, anything);
}

TEST_F(BundleContract, EmptyKeyIsInvalid) {
    EXPECT_EQ(bundle_add_str(content(), "", "text"), BUNDLE_ERROR_INVALID_PARAMETER);
}

TEST_F(BundleContract, SecondValueOfAKeyIsRefused) {
    bundle_add_str(content(), "req", "first");

    EXPECT_EQ(bundle_add_str(content(), "req", "second"), BUNDLE_ERROR_KEY_EXISTS);

    char* value = nullptr;
    bundle_get_str(content(), "req", &value);
    EXPECT_STREQ(value, "first");
}

TEST_F(BundleContract, TextStaysValidWhileOthersAreAdded) {
    bundle_add_str(content(), "first", "1");
    char* value = nullptr;
    bundle_get_str(content(), "first", &value);

    for (int i = 0; i < 100; ++i) {
        bundle_add_str(content(), std::to_string(i).c_str(), "x");
    }

    EXPECT_STREQ(value, "1");
}

TEST_F(BundleContract, NullArgumentsAreInvalid) {
    char* value = nullptr;
    EXPECT_EQ(bundle_add_str(nullptr, "key", "value"), BUNDLE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(bundle_add_str(content(), nullptr, "value"), BUNDLE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(bundle_add_str(content(), "key", nullptr), BUNDLE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(bundle_get_str(nullptr, "key", &value), BUNDLE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(bundle_get_str(content(), nullptr, &value), BUNDLE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(bundle_get_str(content(), "key", nullptr), BUNDLE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(bundle_free(nullptr), BUNDLE_ERROR_INVALID_PARAMETER);
}

} // namespace
