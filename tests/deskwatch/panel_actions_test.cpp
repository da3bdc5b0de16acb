#include <gtest/gtest.h>

#include "panel/actions.h"

namespace deskwatch {
namespace {

struct ActionRow {
    const char* request;
    const char* shell;
};

std::ostream& operator<<(std::ostream& stream, const ActionRow& row) {
    return stream << row.shell;
}

class PanelActions : public testing::TestWithParam<ActionRow> {};

TEST_P(PanelActions, AreTheCommandsOfATerminal) {
    EXPECT_EQ(shellText("/tmp/watch", commandsOf(nlohmann::json::parse(GetParam().request))),
              "deskwatch --device /tmp/watch " + std::string(GetParam().shell));
}

INSTANTIATE_TEST_SUITE_P(
    Known, PanelActions,
    testing::Values(
        ActionRow{R"({"action":"popup","answer":"sync-off"})", "popup sync-off"},
        ActionRow{R"({"action":"lock","lock":"pin","length":6})", "lock pin --length 6"},
        ActionRow{R"({"action":"unlock"})", "lock --right"},
        ActionRow{R"({"action":"wrong-password"})", "lock --wrong 1"},
        ActionRow{R"({"action":"idle","seconds":900})", "lock --idle 900"},
        ActionRow{R"({"action":"age","days":90})", "lock --age 90"},
        ActionRow{R"({"action":"lock","lock":"none"})", "lock none"}, ActionRow{R"({"action":"encrypt"})", "encrypt"},
        ActionRow{R"({"action":"tutorial","state":"done"})", "tutorial done"},
        ActionRow{R"({"action":"send","message":"{\"a\":\"it's\"}"})",
                  R"(mail policy /dev/stdin <<< '{"a":"it'\''s"}')"},
        ActionRow{R"({"action":"whatif","message":"{}"})", "whatif --json /dev/stdin <<< '{}'"},
        ActionRow{R"({"action":"import","document":"<a/>","account":3,"name":"-x y"})",
                  "import /dev/stdin --json --account 3 '--name=-x y' <<< '<a/>'"},
        ActionRow{R"({"action":"delete","account":2})", "mail delete 2"},
        ActionRow{R"({"action":"mail","request":"wipe"})", "mail wipe"},
        ActionRow{R"({"action":"event","event":"low-memory"})", "event low-memory"},
        ActionRow{R"({"action":"fault","function":"vconf_get_int","code":-1,"nth":2})",
                  "fault vconf_get_int -1 --nth 2"},
        ActionRow{R"({"action":"clear-faults"})", "fault --clear"}, ActionRow{R"({"action":"kill"})", "kill"},
        ActionRow{R"({"action":"key","key":"db/a","value":-3})", "key set db/a -- -3"},
        ActionRow{R"({"action":"key","key":"db/a","value":"-x"})", "key set db/a --text -- -x"},
        ActionRow{R"({"action":"boot","country":"KR"})", "boot --country KR"}, ActionRow{R"({"action":"off"})", "off"},
        ActionRow{R"({"action":"store-away"})",
                  "fault vconf_get_int -1 && deskwatch --device /tmp/watch fault vconf_get_str -1 && "
                  "deskwatch --device /tmp/watch fault vconf_ignore_key_changed -1 && "
                  "deskwatch --device /tmp/watch fault vconf_notify_key_changed -1 && "
                  "deskwatch --device /tmp/watch fault vconf_set_int -1 && "
                  "deskwatch --device /tmp/watch fault vconf_set_str -1"},
        ActionRow{R"({"action":"connect","server":"https://a.example","user":"-bob","password":"secret"})",
                  "mail connect https://a.example --user=-bob --no-wait"},
        ActionRow{R"({"action":"refresh","account":2,"password":"secret"})", "mail refresh 2 --no-wait"}));

class BadPanelActions : public testing::TestWithParam<ActionRow> {};

TEST_P(BadPanelActions, AreRefusedWithWhatWouldBeRight) {
    try {
        commandsOf(nlohmann::json::parse(GetParam().request));
        FAIL() << GetParam().request;
    } catch (const BadAction& error) {
        EXPECT_STREQ(error.what(), GetParam().shell);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Refused, BadPanelActions,
    testing::Values(
        ActionRow{"[]", R"(an action is an object, {"action": NAME, ...})"},
        ActionRow{"{}", R"(the action lacks "action")"}, ActionRow{R"({"action":"format"})", "format is not an action"},
        ActionRow{R"({"action":"popup","answer":"--help"})", R"("answer" must be one of ok, sync-off, dismiss)"},
        ActionRow{R"({"action":"delete","account":"2"})", R"("account" must be a whole number)"},
        ActionRow{R"({"action":"refresh","account":2,"password":"a\nb"})", R"("password" must be a line of text)"},
        ActionRow{R"({"action":"send","message":{}})", R"("message" must be a text)"},
        ActionRow{R"({"action":"send","message":"a\u0000"})", R"("message" must not hold a null character)"},
        ActionRow{R"({"action":"fault","function":"--clear","code":1})",
                  R"("function" must neither be empty nor begin with -)"}));

} // namespace
} // namespace deskwatch
