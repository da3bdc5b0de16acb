#include <app_control.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "contract_environment.h"
#include "platform_owners.h"

namespace {

class AppControlContract : public testing::Test {
protected:
    app_control_h control() const { return control_.get(); }

    std::string appId() const {
        char* id = nullptr;
        EXPECT_EQ(app_control_get_app_id(control(), &id), APP_CONTROL_ERROR_NONE);
        return taken(id);
    }

    std::string extraData(const char* key) const {
        char* value = nullptr;
        EXPECT_EQ(app_control_get_extra_data(control(), key, &value), APP_CONTROL_ERROR_NONE);
        return taken(value);
    }

private:
    const AppControlOwner control_ = newAppControl();
};

bool collectKey(app_control_h /*control*/, const char* key, void* keys) {
    static_cast<std::vector<std::string>*>(keys)->emplace_back(key);
    return true;
}

bool collectOneKey(app_control_h control, const char* key, void* keys) {
    collectKey(control, key, keys);
    return false;
}

TEST_F(AppControlContract, IsMadeAndDestroyed) {
    app_control_h made = nullptr;
    EXPECT_EQ(app_control_create(&made), APP_CONTROL_ERROR_NONE);
    EXPECT_EQ(app_control_destroy(made), APP_CONTROL_ERROR_NONE);
}

TEST_F(AppControlContract, NamesNoApplicationAtFirst) {
    EXPECT_EQ(appId(), "(null)");
}

TEST_F(AppControlContract, NewRequestWantsNoReplyFromHere) {
    bool isWanted = true;
    EXPECT_EQ(app_control_is_reply_requested(control(), &isWanted), APP_CONTROL_ERROR_NONE);
    EXPECT_FALSE(isWanted);
}

TEST_F(AppControlContract, KeepsTheApplicationThatWasNamedLast) {
    app_control_set_app_id(control(), "com.example.first");
    EXPECT_EQ(app_control_set_app_id(control(), "com.example.second"), APP_CONTROL_ERROR_NONE);
    EXPECT_EQ(appId(), "com.example.second");
}

TEST_F(AppControlContract, KeepsExtraData) {
    EXPECT_EQ(app_control_add_extra_data(control(), "account", "alice"), APP_CONTROL_ERROR_NONE);
    EXPECT_EQ(extraData("account"), "alice");
}

TEST_F(AppControlContract, KeepsBytesThatAreNotUtf8) {
    EXPECT_EQ(app_control_add_extra_data(control(), "\xfe", "caf\xe9"), APP_CONTROL_ERROR_NONE);
    EXPECT_EQ(extraData("\xfe"), "caf\xe9");
}

TEST_F(AppControlContract, LaterValueReplacesTheEarlier) {
    app_control_add_extra_data(control(), "account", "alice");
    EXPECT_EQ(app_control_add_extra_data(control(), "account", "bob"), APP_CONTROL_ERROR_NONE);
    EXPECT_EQ(extraData("account"), "bob");
}

TEST_F(AppControlContract, MissingKeyIsNotFound) {
    char* value = nullptr;
    EXPECT_EQ(app_control_get_extra_data(control(), "account", &value), APP_CONTROL_ERROR_KEY_NOT_FOUND);
    EXPECT_EQ(value, nullptr);
}

TEST_F(AppControlContract, EmptyKeyOrValueIsInvalid) {
    app_control_add_extra_data(control(), "key", "full");
    EXPECT_EQ(app_control_add_extra_data(control(), "key", ""), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(extraData("key"), "full");
    EXPECT_EQ(app_control_add_extra_data(control(), "", "value"), APP_CONTROL_ERROR_INVALID_PARAMETER);
    char* value = nullptr;
    EXPECT_EQ(app_control_get_extra_data(control(), "", &value), APP_CONTROL_ERROR_INVALID_PARAMETER);
}

TEST_F(AppControlContract, KeyOfThePlatformIsRejected) {
    char* value = nullptr;
    for (const char* key : {"__AUL_X", "__APP_SVC_X"}) {
        EXPECT_EQ(app_control_add_extra_data(control(), key, "value"), APP_CONTROL_ERROR_KEY_REJECTED) << key;
        EXPECT_EQ(app_control_get_extra_data(control(), key, &value), APP_CONTROL_ERROR_KEY_REJECTED) << key;
    }
}

TEST_F(AppControlContract, WalksTheKeysInTheOrderOfTheirValues) {
    for (const char* key : {"b", "a", "c"}) {
        app_control_add_extra_data(control(), key, "1");
    }
    std::vector<std::string> keys;
    EXPECT_EQ(app_control_foreach_extra_data(control(), collectKey, &keys), APP_CONTROL_ERROR_NONE);
    app_control_add_extra_data(control(), "b", "2");
    app_control_foreach_extra_data(control(), collectKey, &keys);
    EXPECT_EQ(keys, (std::vector<std::string>{"b", "a", "c", "a", "c", "b"}));
}

TEST_F(AppControlContract, WalkEndsWhenTheCallbackSaysSo) {
    app_control_add_extra_data(control(), "a", "1");
    app_control_add_extra_data(control(), "b", "2");

    std::vector<std::string> keys;
    app_control_foreach_extra_data(control(), collectOneKey, &keys);

    EXPECT_EQ(keys, std::vector<std::string>{"a"});
}

TEST_F(AppControlContract, NullIdNamesNoApplicationAndAnEmptyOneStays) {
    app_control_set_app_id(control(), "com.example.first");
    EXPECT_EQ(app_control_set_app_id(control(), nullptr), APP_CONTROL_ERROR_NONE);
    EXPECT_EQ(appId(), "(null)");
    EXPECT_EQ(app_control_set_app_id(control(), ""), APP_CONTROL_ERROR_NONE);
    EXPECT_EQ(appId(), "");
}

TEST_F(AppControlContract, LaunchOfNoApplicationIsNotFound) {
    for (const char* id : {static_cast<const char*>(nullptr), ""}) {
        app_control_set_app_id(control(), id);
        EXPECT_EQ(app_control_send_launch_request(control(), nullptr, nullptr), APP_CONTROL_ERROR_APP_NOT_FOUND);
    }
}

TEST_F(AppControlContract, MissingApplicationIsNotFoundAndGivesNoReply) {
    app_control_set_app_id(control(), "com.example.nobody");
    const auto note = [](app_control_h, app_control_h, app_control_result_e, void* data) {
        *static_cast<bool*>(data) = true;
    };
    bool hasReplied = false;
    EXPECT_EQ(app_control_send_launch_request(control(), note, &hasReplied), APP_CONTROL_ERROR_APP_NOT_FOUND);
    contract::runPending();
    EXPECT_FALSE(hasReplied);
}

TEST_F(AppControlContract, NullArgumentsAreInvalid) {
    char* text = nullptr;
    bool flag = false;
    EXPECT_EQ(app_control_create(nullptr), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_destroy(nullptr), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_set_app_id(nullptr, "com.example"), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_get_app_id(nullptr, &text), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_get_app_id(control(), nullptr), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_add_extra_data(nullptr, "key", "value"), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_add_extra_data(control(), nullptr, "value"), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_add_extra_data(control(), "key", nullptr), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_get_extra_data(nullptr, "key", &text), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_get_extra_data(control(), nullptr, &text), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_get_extra_data(control(), "key", nullptr), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_foreach_extra_data(nullptr, collectKey, nullptr), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_foreach_extra_data(control(), nullptr, nullptr), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_send_launch_request(nullptr, nullptr, nullptr), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_get_caller(nullptr, &text), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_get_caller(control(), nullptr), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_is_reply_requested(nullptr, &flag), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_is_reply_requested(control(), nullptr), APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_reply_to_launch_request(nullptr, control(), APP_CONTROL_RESULT_SUCCEEDED),
              APP_CONTROL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(app_control_reply_to_launch_request(control(), nullptr, APP_CONTROL_RESULT_SUCCEEDED),
              APP_CONTROL_ERROR_INVALID_PARAMETER);
}

} // namespace
