// What an administrator may hand over as a policy: any bytes.

#include <stdexcept>

#include "comparison/policy_comparison.h"
#include "fuzz_target.h"
#include "policy_files/policy_file.h"
#include "provisioning/provisioning_import.h"

namespace {

using fuzz::require;
using namespace deskwatch;

void importOne(const FilePolicy& policy) {
    try {
        const ComparedPolicy compared{"file", policy.name, policy.isMessage,
                                      importProvisioning("file", policy.elements, {1, "bob", policy.isMessage})};
        require(!importText("file", compared.import).empty() && !importJson("file", compared.import).empty(),
                "there is a report");
        const auto comparison = comparePolicies(compared, compared);
        require(comparison.differences() == 0, "a policy equals itself");
        comparisonText(compared, compared, comparison);
        comparisonJson(compared, compared, comparison);
    } catch (const std::runtime_error& error) {
        require(error.what()[0] != '\0', "a refusal has words");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const auto content = readPolicyFile("file", fuzz::textOf(data, size));
        noticeLines("file", content);
        for (const auto& policy : content.policies) {
            importOne(policy);
        }
    } catch (const std::runtime_error& error) {
        require(error.what()[0] != '\0', "a refusal has words");
    }
    return 0;
}
