#include <app_preference.h>
#include <gtest/gtest.h>

#include "platform_owners.h"

namespace {

constexpr char key[] = "pref/example/key";

TEST(PreferenceContract, KeepsAnInteger) {
    EXPECT_EQ(preference_set_int(key, -7), PREFERENCE_ERROR_NONE);
    int value = 0;
    EXPECT_EQ(preference_get_int(key, &value), PREFERENCE_ERROR_NONE);
    EXPECT_EQ(value, -7);
}

TEST(PreferenceContract, KeepsABoolean) {
    EXPECT_EQ(preference_set_boolean(key, true), PREFERENCE_ERROR_NONE);
    bool value = false;
    EXPECT_EQ(preference_get_boolean(key, &value), PREFERENCE_ERROR_NONE);
    EXPECT_TRUE(value);
}

TEST(PreferenceContract, KeepsADouble) {
    EXPECT_EQ(preference_set_double(key, 0.25), PREFERENCE_ERROR_NONE);
    double value = 0;
    EXPECT_EQ(preference_get_double(key, &value), PREFERENCE_ERROR_NONE);
    EXPECT_EQ(value, 0.25);
}

TEST(PreferenceContract, KeepsAText) {
    EXPECT_EQ(preference_set_string(key, "Grüße"), PREFERENCE_ERROR_NONE);
    char* value = nullptr;
    EXPECT_EQ(preference_get_string(key, &value), PREFERENCE_ERROR_NONE);
    EXPECT_EQ(taken(value), "Grüße");
}

TEST(PreferenceContract, LaterValueReplacesTheEarlier) {
    preference_set_int(key, 1);
    preference_set_int(key, 2);
    int value = 0;
    preference_get_int(key, &value);
    EXPECT_EQ(value, 2);
}

TEST(PreferenceContract, MissingKeyIsNoKeyAndLeavesTheValueAlone) {
    int number = 5;
    bool flag = true;
    double fraction = 0.5;
    char* text = nullptr;
    EXPECT_EQ(preference_get_int(key, &number), PREFERENCE_ERROR_NO_KEY);
    EXPECT_EQ(preference_get_boolean(key, &flag), PREFERENCE_ERROR_NO_KEY);
    EXPECT_EQ(preference_get_double(key, &fraction), PREFERENCE_ERROR_NO_KEY);
    EXPECT_EQ(preference_get_string(key, &text), PREFERENCE_ERROR_NO_KEY);
    EXPECT_EQ(number, 5);
    EXPECT_TRUE(flag);
    EXPECT_EQ(fraction, 0.5);
    EXPECT_EQ(text, nullptr);
}

TEST(PreferenceContract, NumberOrBooleanOfAnotherTypeIsInvalidAndOverwritten) {
    int number = 5;
    bool flag = true;
    double fraction = 0.5;
    preference_set_string(key, "7");
    EXPECT_EQ(preference_get_int(key, &number), PREFERENCE_ERROR_INVALID_PARAMETER);
    preference_set_int(key, 0);
    EXPECT_EQ(preference_get_boolean(key, &flag), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_get_double(key, &fraction), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_NE(number, 5);
    EXPECT_FALSE(flag);
    EXPECT_NE(fraction, 0.5);
}

TEST(PreferenceContract, TextOfAnotherTypeIsInvalidAndLeftAlone) {
    preference_set_int(key, 7);
    char* text = nullptr;
    EXPECT_EQ(preference_get_string(key, &text), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(text, nullptr);
}

TEST(PreferenceContract, NumberReplacesAText) {
    preference_set_string(key, "text");
    EXPECT_EQ(preference_set_int(key, 7), PREFERENCE_ERROR_NONE);
    int value = 0;
    EXPECT_EQ(preference_get_int(key, &value), PREFERENCE_ERROR_NONE);
    EXPECT_EQ(value, 7);
}

TEST(PreferenceContract, EmptyKeyCannotBeWritten) {
    EXPECT_EQ(preference_set_int("", 7), PREFERENCE_ERROR_IO_ERROR);
    int value = 0;
    EXPECT_NE(preference_get_int("", &value), PREFERENCE_ERROR_NONE);
    EXPECT_EQ(value, 0);
}

TEST(PreferenceContract, KeyExistsOnceItWasSet) {
    bool before = true;
    EXPECT_EQ(preference_is_existing(key, &before), PREFERENCE_ERROR_NONE);
    preference_set_int(key, 0);
    bool after = false;
    EXPECT_EQ(preference_is_existing(key, &after), PREFERENCE_ERROR_NONE);
    EXPECT_FALSE(before);
    EXPECT_TRUE(after);
}

TEST(PreferenceContract, NullArgumentsAreInvalid) {
    int number = 0;
    bool flag = false;
    double fraction = 0;
    char* text = nullptr;
    EXPECT_EQ(preference_set_int(nullptr, 1), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_set_boolean(nullptr, true), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_set_double(nullptr, 1), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_set_string(nullptr, "text"), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_set_string(key, nullptr), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_get_int(nullptr, &number), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_get_int(key, nullptr), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_get_boolean(nullptr, &flag), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_get_boolean(key, nullptr), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_get_double(nullptr, &fraction), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_get_double(key, nullptr), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_get_string(nullptr, &text), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_get_string(key, nullptr), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_is_existing(nullptr, &flag), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_is_existing(key, nullptr), PREFERENCE_ERROR_INVALID_PARAMETER);
}

} // namespace
