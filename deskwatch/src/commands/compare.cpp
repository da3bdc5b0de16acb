#include <iostream>
#include <memory>
#include <vector>

#include "actors/refusal.h"
#include "commands.h"
#include "comparison/policy_comparison.h"
#include "policy_files/policy_file.h"
#include "text/input_file.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

struct CompareOptions {
    std::string first;
    std::string second;
    std::vector<std::string> policies;
    bool keepsLimits = false;
    bool isJson = false;
};

ComparedPolicy readCompared(const std::string& path, const std::string& policyName, bool keepsLimits) {
    ComparedPolicy compared;
    compared.file = inputName(path);
    const auto content = readPolicyFile(compared.file, readInput(path));
    for (const auto& line : noticeLines(compared.file, content)) {
        std::cerr << "warning: " << line << '\n';
    }
    // a file with one policy needs no choice, whatever the other one needs
    const auto& policy = chosenPolicy(compared.file, content, content.policies.size() > 1 ? policyName : "");
    compared.name = policy.name;
    compared.isMessage = policy.isMessage;
    compared.import =
        importProvisioning(compared.file, policy.elements, {1, "compared", keepsLimits || policy.isMessage});
    return compared;
}

void compare(const CompareOptions& options) {
    const auto name = [&options](std::size_t index) { return options.policies.empty() ? "" : options.policies[index]; };
    const auto first = readCompared(options.first, name(0), options.keepsLimits);
    const auto second = readCompared(options.second, name(options.policies.size() > 1 ? 1 : 0), options.keepsLimits);
    const auto comparison = comparePolicies(first, second);
    std::cout << (options.isJson ? comparisonJson(first, second, comparison)
                                 : comparisonText(first, second, comparison));
    if (const auto count = comparison.differences(); count > 0) {
        throw Refusal("the policies differ in " + counted(count, "value"));
    }
}

} // namespace

void addCompareCommand(CLI::App& program) {
    auto* command = program.add_subcommand("compare", "Put two policies side by side");
    auto options = std::make_shared<CompareOptions>();
    const std::string formats = " policy, in any format that import reads; - is standard input";
    command->add_option("FIRST", options->first, "A" + formats)->required();
    command->add_option("SECOND", options->second, "Another" + formats)->required();
    command
        ->add_option(
            "--policy", options->policies,
            "Which policy of a file that has several: in both files, or when given twice, in FIRST and in SECOND")
        ->check(checkNotEmpty, "")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->type_name("NAME");
    command->add_flag("--keep-limits", options->keepsLimits,
                      "Keep password limits even if no password is required; the protocol ignores them");
    command->add_flag("--json", options->isJson, "One JSON object instead of tables");
    command->footer(
        "The last column is what a watch goes by that has an account of each. Needs no watch. Exit status 3\n"
        "when the policies differ.\n"
        "Example:\n  deskwatch compare samples/hardened.json samples/strictest.json");
    command->callback([options] { compare(*options); });
}

} // namespace deskwatch
