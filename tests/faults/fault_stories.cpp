#include "fault_stories.h"

#include <ostream>

#include "accounts.h"
#include "fault.h"
#include "sample_policies.h"

namespace {

using namespace harness;

constexpr char passwordApplied[] = "db/eas/password_policy_applied";
constexpr char encryptionApplied[] = "db/eas/device_encryption_applied";

/// An account list: a new account, one that is listed again and keeps its policy, and another new one.
std::string accountList() {
    const auto entry = [](int accountId, const std::string& policy) {
        return R"({"id":)" + std::to_string(accountId) +
               R"(,"accountName":"alice@contoso.example","displayName":"Alice")" + policy + "}";
    };
    const std::string policySet = R"(,"policySet":)";
    return "[" + entry(2, policySet + samples::hardened) + "," + entry(1, "") + "," +
           entry(3, policySet + samples::limitsWithoutPassword) + "]";
}

void oldStyleQuality(Watch& watch) {
    deviceRuleChanges("quality", 16)(watch);
    deviceRuleChanges("minimum_length", 5)(watch);
}

/// The service starts, and ends when its main loop would begin. The named allocations end the process.
FaultStory start(const Story& story, int leastRuns, const std::vector<int>& allocations) {
    FaultStory made{story, leastRuns, true, true};
    for (const int nth : allocations) {
        made.ends.push_back(Fault{"operator new", nth, -1}.text());
    }
    return made;
}

// Which allocation makes which manager.
constexpr int application = 1;
constexpr int idleTerminator = 2;
constexpr int policyManager = 6;

std::vector<FaultStory> makeStories() {
    const std::string accountInfo = R"({"msgId":"email-account-info","seqId":1,"accountId":)" + accountList() + "}";
    const std::string initResponse = R"({"msgId":"email-init-res","param":{"accountId":)" + accountList() + "}}";
    const auto checks = {passwordCheckIsAskedFor(), keyChanges(passwordApplied, 1), encryptionCheckIsAskedFor()};
    const auto idle = {keyChanges(passwordApplied, 1), keyChanges(encryptionApplied, 1), serviceIsLaunched(),
                       timePasses(10)};
    return {
        start({"FirstStart", {}, {}}, 700, {application}),
        start({"StartWithAccounts", {office(1), bank(2)}, {}}, 1300, {application, idleTerminator, policyManager}),
        start({"StartWithAnOldStyleQuality", {office(1)}, {}, oldStyleQuality}, 1300,
              {application, idleTerminator, policyManager}),
        {{"FirstAccount", {}, {policyArrives(1, samples::hardened)}}, 1300},
        {{"StrongerSecondAccount", {office(1)}, {policyArrives(2, samples::strictest)}}, 1200},
        {{"UpdateOfOneOfThree", {office(1), bank(2), agency(3)}, {policyArrives(2, samples::builtIn)}}, 1200},
        {{"AccountList", {office(1)}, {messageArrives(accountInfo)}}, 1200},
        {{"InitResponse", {office(1)}, {messageArrives(initResponse)}}, 1200},
        {{"WearerSetsTheLock", {bank(1)}, {lockIsSet()}}, 200},
        {{"EncryptionDone",
          {bank(1)},
          {keyChanges("db/ode/crypto_state", "encrypted"), keyChanges(encryptionApplied, 1)}},
         14},
        {{"PopupSaysOk", {office(1)}, {wearerAnswers("ok")}}, 67},
        {{"PopupTurnsMailOff", {office(1)}, {wearerAnswers("sync_off_ok")}}, 49},
        {{"Checks", {bank(1)}, checks}, 290},
        {{"Deletion", {office(1), bank(2)}, {accountIsRemoved("2")}}, 1200},
        {{"LastDeletion", {bank(1)}, {accountIsRemoved("1")}}, 1000},
        {{"RemoteWipe", {office(1)}, {wipeIsOrdered()}}, 30},
        {{"TestPolicy", {office(1)}, {developerSendsPolicy(bank(testAccountId))}}, 1300},
        {{"TestRemoval", {office(1), bank(testAccountId)}, {developerRemovesAccount(testAccountId)}}, 1300},
        {{"IdleEnd", {office(1)}, idle}, 50, false, true},
    };
}

} // namespace

const std::vector<FaultStory>& faultStories() {
    static const std::vector<FaultStory> all = makeStories();
    return all;
}

void PrintTo(const FaultStory& story, std::ostream* out) {
    *out << story.story.name;
}
