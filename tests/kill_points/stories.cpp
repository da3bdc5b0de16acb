#include "stories.h"

#include "sample_policies.h"

namespace kill_points {

namespace {

Request update(int account, const std::string& policySet, const std::string& name = "alice@contoso.example") {
    return {"req_update_policy", samples::indicationOf("[" + samples::entry(account, policySet, name) + "]")};
}

Request deletion(int account) {
    return {"req_delete_account", std::to_string(account)};
}

/// Fills several pages of the database, so that a row is torn when its pages are.
std::string longName(char letter) {
    constexpr std::size_t size = 10'000;
    return std::string(size, letter) + "@contoso.example";
}

} // namespace

std::vector<Story> stories() {
    const std::vector<Request> one{update(1, samples::hardened)};
    const std::vector<Request> three{update(1, samples::builtIn), update(2, samples::limitsWithoutPassword),
                                     update(3, samples::hardened, longName('c'))};
    const std::vector<Request> threeUpdates{update(1, samples::strictest, longName('a')),
                                            update(2, samples::hardened, "bob@contoso.example"),
                                            update(3, samples::builtIn, longName('d'))};
    return {
        {"first start", std::nullopt, std::nullopt, {}, 16},
        {"first account", std::vector<Request>{}, std::nullopt, one, 14},
        {"update of three accounts", three, std::nullopt, threeUpdates, 60},
        {"deletion of one of three", three, std::nullopt, {deletion(2)}, 14},
        {"last deletion", one, std::nullopt, {deletion(1)}, 14},
        {"start behind a cut-off update", three, threeUpdates.front(), {}, 6},
    };
}

Request freshAccount() {
    return update(freshAccountId, samples::strictest);
}

} // namespace kill_points
