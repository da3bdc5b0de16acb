#include "kill_point_stories.h"

#include "accounts.h"
#include "sample_policies.h"

namespace kill_points {

namespace {

using namespace harness;

/// Fills several pages of the database, so that a row is torn when its pages are.
std::string longName(char letter) {
    constexpr std::size_t size = 10'000;
    return std::string(size, letter) + "@contoso.example";
}

TeskPolicyData accountWithLongName(int accountId) {
    auto data = bank(accountId);
    data.accountName = longName('c');
    return data;
}

Event updateWithName(int accountId, const std::string& policySet, const std::string& name) {
    return messageArrives(samples::indicationOf("[" + samples::entry(accountId, policySet, name) + "]"));
}

} // namespace

std::vector<KillPointStory> killPointStories() {
    const std::vector<TeskPolicyData> three{agency(1), office(2), accountWithLongName(3)};
    const std::vector<Event> threeUpdates{updateWithName(1, samples::strictest, longName('a')),
                                          updateWithName(2, samples::hardened, "bob@contoso.example"),
                                          updateWithName(3, samples::builtIn, longName('d'))};
    return {
        {{"first start and first account", {}, {policyArrives(1, samples::hardened)}}, 30},
        {{"update of three accounts", three, threeUpdates}, 60},
        {{"deletion of one of three", three, {accountIsRemoved("2")}}, 14},
        {{"last deletion", {bank(1)}, {accountIsRemoved("1")}}, 14},
        {{"start after an update that was cut off", three, {}}, 6, threeUpdates.front()},
    };
}

} // namespace kill_points
