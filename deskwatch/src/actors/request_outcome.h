#ifndef DESKWATCH_REQUEST_OUTCOME_H
#define DESKWATCH_REQUEST_OUTCOME_H

#include <optional>
#include <string>
#include <vector>

#include "actors/request.h"
#include "records/service_log.h"
#include "session/value.h"

namespace deskwatch {

/// What became of an account, or of a request that is about none.
enum class Became { Stored, Updated, Unchanged, Deleted, Wiped, Handled, PassedOver, Refused, Unknown };

/// One thing that a request has brought about, or has not.
struct Effect {
    Became became = Became::Unknown;
    /// The account's number; none when it is about no account.
    std::optional<int> account;
    std::string accountName;
    /// Why it was passed over or refused, or cannot be told.
    std::string reason;
};

/// What became of a request.
struct RequestOutcome {
    /// One for each account of a message, in its order; one for any other request.
    std::vector<Effect> effects;
    /// What the platform refused on the way, such as a setting that a stored policy demands. Printable.
    std::vector<std::string> refusals;
    /// How often the service ended before it had handled the request, which was sent again each time.
    int repetitions = 0;

    /// Whether the watch did all that was asked.
    bool isDone() const;

    /// What was done, and what was not, each in a line of words without a line break.
    std::vector<std::string> done() const;
    std::vector<std::string> notDone() const;
};

/// What the service left behind while it handled a request.
struct RequestTraces {
    /// The stored accounts; none when they cannot be read.
    std::optional<std::vector<StoredAccount>> before;
    std::optional<std::vector<StoredAccount>> after;
    std::vector<ServiceLine> log;
};

/// Whether the request is the order to wipe the watch.
bool isWipe(const Request& request);

/// Concludes from the traces of a request what became of it.
RequestOutcome outcomeOf(const Request& request, const RequestTraces& traces);

} // namespace deskwatch

#endif
