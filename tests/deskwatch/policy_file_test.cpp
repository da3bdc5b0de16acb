#include "policy_files/policy_file.h"

#include <glib.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iomanip>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "c_owners.h"
#include "provisioning/provisioning_import.h"

namespace deskwatch {
namespace {

std::string policyFileRefusal(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no refusal";
}

std::string policyText(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The elements of the only policy of a text, or of the one of that name: `NAME=VALUE`, `NAME{}` for a list.
std::string elementsRead(const std::string& text, const std::string& name = "") {
    std::string words;
    const auto content = readPolicyFile("p", text);
    for (const auto& element : chosenPolicy("p", content, name).elements) {
        words += (words.empty() ? "" : " ") + element.name + (element.isList ? "{}" : "=" + element.value);
    }
    return words;
}

/// The policy set of a text's message.
std::string policySetOf(const std::string& text, const std::string& name) {
    const auto content = readPolicyFile("p", text);
    const auto import = importProvisioning("p", chosenPolicy("p", content, name).elements, {1, "a@b.example", false});
    const auto message = nlohmann::json::parse(import.message);
    return message["param"][0]["policySet"].dump();
}

std::string convertedTo(const char* encoding, const std::string& mark, const std::string& text) {
    gsize size = 0;
    const c::MemoryOwner<char> bytes(
        g_convert(text.data(), static_cast<gssize>(text.size()), encoding, "UTF-8", nullptr, &size, nullptr));
    return mark + std::string(bytes.get(), size);
}

TEST(ReadPolicyFile, SamePolicyIsTheSameMessageInEveryFormat) {
    const std::string samples = SAMPLES;
    const auto expected = policySetOf(policyText(samples + "/hardened.json"), "");
    struct Row {
        const char* file;
        const char* name;
    };
    for (const Row& row : {Row{"format-list.txt", "Hardened"}, Row{"convertto-json.json", "Hardened"},
                           Row{"export.csv", "Hardened"}, Row{"policies.ini", "Hardened"}, Row{"grommunio.json", ""},
                           Row{"reply.hex", ""}, Row{"../provision-hardened.xml", ""}}) {
        EXPECT_EQ(policySetOf(policyText(samples + "/policies/" + row.file), row.name), expected) << row.file;
    }
    const auto list = policyText(samples + "/policies/format-list.txt");
    EXPECT_EQ(policySetOf(convertedTo("UTF-16LE", "\xFF\xFE", list), ""), expected);
    EXPECT_EQ(policySetOf(convertedTo("UTF-16BE", "\xFE\xFF", list), ""), expected);
    EXPECT_EQ(policySetOf(convertedTo("UTF-16BE", "", list), ""), expected);
    EXPECT_EQ(policySetOf("\xEF\xBB\xBF" + list, ""), expected);
}

TEST(ReadPolicyFile, EveryFormatIsReadWithItsOddities) {
    struct Row {
        const char* text;
        const char* elements;
    };
    const Row rows[] = {
        {"PS> list\n\n    MinPasswordLength : \n    PasswordExpiration : Unlimited\n", // pasted with the prompt,
                                                                                       // indented
         "MinDevicePasswordLength= DevicePasswordExpiration="},
        {"ApprovedApplicationList : {a, b,\n                          c}\nAllowCamera : False", // a long value goes on
         "ApprovedApplicationList{} AllowCamera=0"},
        {"MinDevicePasswordLength : 6\nMinPasswordLength : 6", "MinDevicePasswordLength=6"}, // old name and new
        {"Name = \"A\";\nPasswordEnabled = $True;\nApprovedApplicationList = @()\nMaxInactivityTimeLock = '1.00:00:01'",
         "DevicePasswordEnabled=1 ApprovedApplicationList= MaxInactivityTimeDeviceLock=86401"},
        {"MaxAttachmentSize : 10 MB (10,485,760 bytes)\nAllowBluetooth : handsfreeonly\nGuid : 1\nAlowCamera : True",
         "MaxAttachmentSize=10485760 AllowBluetooth=1 AlowCamera=True"},
        {"Name;PasswordEnabled\r\n\"a;\"\"b\"\"\";\"True\"\r\n",
         "DevicePasswordEnabled=1"}, // the list separator of a country
        {"Name,AllowCamera,ApprovedApplicationList\n\"two\nlines\",False,System.String[]\n",
         "AllowCamera=0 ApprovedApplicationList=(not in the file)"},
        {R"({"AllowBluetooth": {"value": 1, "Value": "HandsfreeOnly"}, "MinPasswordLength": null, "Extra": {}})",
         "AllowBluetooth=1 MinDevicePasswordLength="},
        {R"({"ApprovedApplicationList": ["a"], "MaxPasswordFailedAttempts": {"IsUnlimited": true, "Value": 4}})",
         "ApprovedApplicationList{} MaxDevicePasswordFailedAttempts="},
        {R"({"devpwenabled": "1", "approvedapplist": ["a"], "devpwhystory": 3})", // the inner object; a slip of the pen
         "DevicePasswordEnabled=1 ApprovedApplicationList{} devpwhystory=3"},
        {"\tPasswordEnabled :\tTrue\r\nApprovedApplicationList : { }\nUnapprovedInROMApplicationList = @( )\n"
         "Allow_Camera : False",
         "DevicePasswordEnabled=1 ApprovedApplicationList= UnapprovedInROMApplicationList= Allow_Camera=False"},
        {"PasswordEnabled : True\nMaxAttachmentSize : 999 MB (999,999,999 bytes)",
         "DevicePasswordEnabled=1 MaxAttachmentSize=999999999"},
        {"PasswordEnabled : True\nMaxAttachmentSize : 1 GB (1,000,000,000 bytes)",
         "DevicePasswordEnabled=1 MaxAttachmentSize=1 GB (1,000,000,000 bytes)"},
        {"PasswordEnabled : True\nMinPasswordLength : \"\"", "DevicePasswordEnabled=1 MinDevicePasswordLength="},
        {"PasswordEnabled : True\nMaxAttachmentSize : (", "DevicePasswordEnabled=1 MaxAttachmentSize=("},
        {"Name,PasswordEnabled,ApprovedApplicationList,Extra\nA,True,Microsoft.Exchange.List\n\n",
         "DevicePasswordEnabled=1 ApprovedApplicationList=(not in the file)"},
        {R"({"PasswordEnabled": true, "MaxInactivityTimeLock": {"TotalSeconds": 90.0}, "PasswordExpiration":
             {"Value": {"TotalSeconds": 86400}}})",
         "DevicePasswordEnabled=1 MaxInactivityTimeDeviceLock=90 DevicePasswordExpiration=1"},
        {R"({"data": 5, "devpwenabled": 1})", "data=5 DevicePasswordEnabled=1"},
        {"# devpwenabled=0\n ; devpwenabled=0\n\tdevpwenabled =\t1 ; [x]\nmaxattsize= \"a;b\" ; c",
         "DevicePasswordEnabled=1 MaxAttachmentSize=a;b"},
        {"; comment\ndevpwenabled=on\nmaxattsize='-1' ; all\n=5\n", "DevicePasswordEnabled=1 MaxAttachmentSize=-1"},
    };
    for (const auto& [text, elements] : rows) {
        EXPECT_EQ(elementsRead(text), elements) << text;
    }
    EXPECT_EQ(elementsRead("[default]\ndevpwenabled=1\nmindevpwlenngth=4\n[strict]\nmindevpwlenngth=8", "strict"),
              "MinDevicePasswordLength=8 DevicePasswordEnabled=1");
    EXPECT_EQ(elementsRead("devpwenabled=1\n[default]\nallowcam=0\n[x]\nallowcam=1", "x"), "AllowCamera=1");
    EXPECT_EQ(readPolicyFile("p", "devpwenabled=1\n[default]\nallowcam=0").policies[0].elements.size(), 1U)
        << "what stands before the sections inherits nothing";
    const std::string part = "holds only a part of a policy; what the server's default policy adds is not here";
    EXPECT_EQ(readPolicyFile("p", R"({"mindevpwlenngth": 4})").remarks, std::vector{part});
    EXPECT_TRUE(readPolicyFile("p", R"({"devpwenabled": 1})").remarks.empty());
}

TEST(ReadPolicyFile, NameGoesBeforeTheIdentity) {
    for (const char* const text : {R"({"Name": "N", "Identity": "I", "AllowCamera": true})",
                                   R"({"Identity": "I", "Name": "N", "AllowCamera": true})"}) {
        EXPECT_EQ(readPolicyFile("p", text).policies.at(0).name, "N");
    }
    EXPECT_EQ(readPolicyFile("p", R"({"Identity": "I", "AllowCamera": true})").policies.at(0).name, "I");
    EXPECT_EQ(readPolicyFile("p", "Name,AllowCamera\n\"a \"\"b\"\"\",True\n").policies.at(0).name, R"(a "b")");
}

/// Bytes in lines with their offset before them and as a text after them.
std::string dumped(const std::string& bytes, const char* afterOffset, const char* beforeText, const char* afterText) {
    constexpr std::size_t perLine = 16;
    std::ostringstream lines;
    for (std::size_t at = 0; at < bytes.size(); at += perLine) {
        lines << std::hex << std::setfill('0') << std::setw(8) << at << afterOffset;
        for (std::size_t index = at; index < std::min(at + perLine, bytes.size()); ++index) {
            lines << std::setw(2) << static_cast<int>(static_cast<unsigned char>(bytes[index])) << ' ';
        }
        lines << beforeText << "0123  .:abcdef" << afterText << '\n';
    }
    return lines.str();
}

TEST(ReadPolicyFile, CaptureIsReadInEveryForm) {
    const auto hex = policyText(std::string(SAMPLES) + "/policies/reply.hex");
    auto tight = hex;
    tight.erase(std::remove_if(tight.begin(), tight.end(), [](char c) { return c == ' ' || c == '\n'; }), tight.end());
    std::string bytes;
    for (std::size_t at = 0; at < tight.size(); at += 2) {
        bytes += static_cast<char>(std::stoi(tight.substr(at, 2), nullptr, 16));
    }
    const c::MemoryOwner<char> base64(g_base64_encode(reinterpret_cast<const guchar*>(bytes.data()), bytes.size()));
    const auto expected = elementsRead(hex);
    EXPECT_EQ(elementsRead(tight), expected);
    EXPECT_EQ(elementsRead("0x" + tight), expected);
    EXPECT_EQ(elementsRead(bytes), expected);
    EXPECT_EQ(elementsRead(dumped(bytes, ": ", "  ", "")), expected) << "xxd";
    EXPECT_EQ(elementsRead(dumped(bytes, "  ", "  |", "|") + "0000007d\n"), expected) << "hexdump -C";
    EXPECT_EQ(elementsRead("0000007d\n" + dumped(bytes, "  ", "  |", "|").substr(1)), expected) << "seven digits";
    for (const char* const between : {"\t", "\r\n", ", ", ":", "-"}) {
        auto separated = hex;
        for (auto at = separated.find(' '); at != std::string::npos; at = separated.find(' ', at)) {
            separated.replace(at, 1, between);
            at += std::string(between).size();
        }
        EXPECT_EQ(elementsRead(separated), expected) << between;
    }
    auto text = std::string(base64.get());
    EXPECT_EQ(elementsRead(text + "\n"), expected);
    EXPECT_EQ(elementsRead("\t " + text.substr(0, 40) + "\r\n" + text.substr(40)), expected);
    const auto wipe = readPolicyFile("p", "03 01 6A 00 00 0E 45 4B 03 32 00 01 0C 01"); // Status 2, RemoteWipe
    ASSERT_EQ(wipe.notices.size(), 2U);
    EXPECT_EQ(wipe.notices[0].status, "2");
    EXPECT_EQ(wipe.notices[1].kind, ServerNotice::Kind::Wipe);
    EXPECT_TRUE(wipe.policies.empty());
}

TEST(ReadPolicyFile, MessageIsAPolicyForEachOfItsAccounts) {
    const auto three = policyText(std::string(SAMPLES) + "/three-accounts.json");
    EXPECT_EQ(readPolicyFile("p", three).policies.size(), 3U);
    const auto content =
        readPolicyFile("p", R"({"msgId": "email-itpolicy-ind", "param": [{"accountName": "a", "policySet":
        {"PasswordMode": 96, "allowBluetoothMode": true, "allowCamera": "no",
        "minDevicePasswordLength": 0}}]})");
    ASSERT_EQ(content.policies.size(), 1U);
    EXPECT_TRUE(content.policies[0].isMessage);
    const auto& elements = content.policies[0].elements;
    EXPECT_EQ(elements[0].value, "1");
    EXPECT_TRUE(elements[1].wording.isIllegal) << "the camera's";
    EXPECT_EQ(elements[2].value, "2");
    EXPECT_EQ(elements[3].value, "0") << "a member that is left out forbids";
    EXPECT_EQ(elements[17].value, "");
    EXPECT_EQ(elements[17].line, 3);
    EXPECT_EQ(elements[18].line, 1) << "that of the policy set, which lacks it";
    const auto order = readPolicyFile("p", R"({"msgId": "eas-remote-wipe"})");
    ASSERT_EQ(order.notices.size(), 1U);
    EXPECT_EQ(noticeText("p", order.notices[0]),
              "p:1: the server orders to wipe the watch (RemoteWipe), whatever policy it sends");
    for (const char* const none : {R"([{"policySet": 5}])", R"([{}])", "7"}) {
        const auto text = std::string(R"({"msgId": "email-itpolicy-ind", "param": )") + none + "}";
        EXPECT_TRUE(readPolicyFile("p", text).policies.empty()) << text;
    }
}

TEST(ReadPolicyFile, MistakesAreNamedWithTheirPlace) {
    std::string many = "devpwenabled=1\n";
    std::string sections = many;
    for (int count = 0; count <= 100; ++count) {
        sections += "[" + std::to_string(count) + "]\n";
    }
    for (int count = 0; count < 1000; ++count) {
        many += std::to_string(count) + "=1\n";
    }
    const auto inherited = "[x]\nallowcam=1\n[default]\n" + many;
    struct Row {
        const char* text;
        const char* refusal;
    };
    const Row rows[] = {
        {"{\"devpwenabled\": 1,}", "p:1:20: not valid JSON: "},
        {"{\"a\": 1}", "p: not a policy in a known format. Known are: "},
        {"[other]\nlifetime = 3", "p: not a policy in a known format. "},
        {"[default]\n", "p: no section has a key of a policy, such as devpwenabled"},
        {"dear sir: or madam", "p: not a policy in a known format. "},
        {" \n", "p: the file is empty"},
        {many.c_str(), "p:1: 1001 settings; a policy has at most 1000"},
        {inherited.c_str(), "p:4: 1001 settings; a policy has at most 1000"},
        {sections.c_str(), "p: 102 sections; at most 100 are read"},
        {"\xFF\xFE\x41", "p: not valid UTF-16"},
        {"03 01 6A 00 45", "p: not a WBXML document of ActiveSync: byte 5: "},
        {"<EASProvisionDoc>", "p:1: not valid XML: "},
    };
    for (const auto& [text, expected] : rows) {
        const auto what = policyFileRefusal([&, text = text] { readPolicyFile("p", text); });
        EXPECT_EQ(what.find(expected), 0U) << what;
    }
}

TEST(ReadPolicyFile, MistakesAreToldInTheWordsOfTheFileAndOfTheChosenPolicyAlone) {
    struct Row {
        const char* text;
        const char* refusal;
    };
    const Row rows[] = {
        {"AllowCamera : True\nMaxInactivityTimeLock : 15",
         "p:2: MaxInactivityTimeLock is \"15\"; it must be a time such as 00:15:00, or Unlimited"},
        {"PasswordExpiration : 1.12:00:00", "p:1: PasswordExpiration is \"1.12:00:00\"; it must be whole days such as"},
        {"MaxInactivityTimeLock : 00:-1:00", "p:1: MaxInactivityTimeLock is"},
        {"PasswordEnabled : Wahr", "p:1: PasswordEnabled is \"Wahr\"; it must be True or False"},
        {"AllowBluetooth : 3", "p:1: AllowBluetooth is \"3\"; it must be Disable, HandsfreeOnly or Allow"},
        {"MinPasswordLength,AllowCamera\n40,True",
         "p:2: MinPasswordLength is \"40\"; it must be a number from 1 to 16"},
        {"[default]\ndevpwenabled=x", "p:2: devpwenabled is \"x\"; it must be 0 or 1"},
        {R"({"msgId": "email-itpolicy-ind", "param": [{"policySet": {"PasswordMode": 1, "allowCamera": 1}}]})",
         "p:1: PasswordMode is \"1\"; it must be 0, 32, 64 or 96\np:1: allowCamera is \"1\"; it must be true or false"},
        {"Name : A\nMaxInactivityTimeLock : 15\nName : B\nAllowCamera : True\n",
         R"(p has 2 policies; choose one with --policy: "A", "B")"},
        {"AllowCamera : True\nAllowWifI : True", "not a property of a policy; did you mean \"AllowWiFi\"?"},
        {"MinPasswordLenght : 4", "not a property of a policy; did you mean \"MinPasswordLength\"?"},
        {"MinDevicePasswordLenght : 4", "not a property of a policy; did you mean \"MinDevicePasswordLength\"?"},
        {"allowcam=1\nreqstoragecardenk=1", "not a key of a policy; did you mean \"reqstoragecardenc\"?"},
        {R"({"MaxInactivityTimeLock": {"TotalSeconds": 90.05}})", "p:1: MaxInactivityTimeLock is \"0:0:90.05\"; "},
        {"MaxInactivityTimeLock : 1:00", "p:1: MaxInactivityTimeLock is \"1:00\"; it must be a time"},
        {"allowcam=1\nmindevpwlength=4", "not a key of a policy; did you mean \"mindevpwlenngth\"?"},
    };
    for (const auto& [text, expected] : rows) {
        const auto what = policyFileRefusal([text = text] {
            const auto content = readPolicyFile("p", text);
            const auto import = importProvisioning("p", chosenPolicy("p", content, "").elements, {1, "a", false});
            throw std::runtime_error(import.elements.back().remark);
        });
        EXPECT_EQ(what.find(expected), 0U) << what;
    }
    const auto content = readPolicyFile("p", rows[8].text);
    EXPECT_EQ(chosenPolicy("p", content, "B").elements.size(), 1U);
}

TEST(ReadPolicyFile, LastPolicyOfATraceCountsAsAClientTakesIt) {
    const auto policy = [](const std::string& length) {
        return "< 200\n<| <?xml version=\"1.0\"?>\n<| <Provision><EASProvisionDoc>\n<|   <MinDevicePasswordLength>" +
               length + "</MinDevicePasswordLength>\n<|   <MinDevicePasswordLength>" + length +
               "</MinDevicePasswordLength>\n<| </EASProvisionDoc></Provision>\n<= 03 01\n\n";
    };
    const std::string head = "# deskwatch exchange trace\n\n> POST\n>| <Provision><EASProvisionDoc/></Provision>\n";
    const auto content = readPolicyFile("t", head + policy("6") + policy("99") + "< 200\n<| <Provision/>\n");
    const auto& elements = chosenPolicy("t", content, "").elements;
    ASSERT_EQ(elements.size(), 1U);
    EXPECT_EQ(elements[0].value, "16");
    EXPECT_EQ(elements[0].line, 16);
    EXPECT_EQ(content.remarks, std::vector<std::string>{"MinDevicePasswordLength \"99\" is taken as 16"});
    EXPECT_EQ(policyFileRefusal([&] { readPolicyFile("t", head); }), "t: no server sent a policy in this trace");
}

TEST(ChosenPolicy, NamesAreToldWhenTheChoiceIsOpen) {
    const PolicyFile two{{{"Field staff", {}, false}, {"Office", {}, false}}, {}, {}};
    EXPECT_EQ(chosenPolicy("p", two, "Office").name, "Office");
    EXPECT_EQ(policyFileRefusal([&] { chosenPolicy("p", two, ""); }),
              "p has 2 policies; choose one with --policy: \"Field staff\", \"Office\"");
    EXPECT_EQ(policyFileRefusal([&] { chosenPolicy("p", two, "office"); }),
              "p has no policy \"office\"; it has \"Field staff\", \"Office\"; did you mean \"Office\"?");
    EXPECT_EQ(policyFileRefusal([] { chosenPolicy("p", {}, ""); }), "p brings no policy");
}

TEST(NoticeText, SaysWhatTheServerMeans) {
    using Kind = ServerNotice::Kind;
    EXPECT_EQ(noticeText("p", {Kind::Status, "140", 3}),
              "p:3: the server answers with Status 140, the server orders a wipe");
    EXPECT_EQ(noticeText("p", {Kind::PolicyStatus, "2", 0}),
              "p: the server answers with Status of the policy 2, the server has no policy for this user");
    EXPECT_EQ(noticeText("p", {Kind::Status, "x", 1}), "p:1: the Status is \"x\", which is not a number");
    EXPECT_EQ(noticeText("p", {Kind::AccountWipe, "", 1}).find("p:1: the server orders to remove the account"), 0U);
}

} // namespace
} // namespace deskwatch
