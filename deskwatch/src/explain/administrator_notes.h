#ifndef DESKWATCH_ADMINISTRATOR_NOTES_H
#define DESKWATCH_ADMINISTRATOR_NOTES_H

#include <vector>

#include "rules/TeskPolicyData.h"

namespace deskwatch {

/// Something about this watch that an administrator may not expect, and the accounts that bring it up.
struct AdministratorNote {
    std::vector<int> accounts;
    const char* text;
};

/// What is worth knowing about these accounts together; nothing when they hold no surprise.
std::vector<AdministratorNote> administratorNotes(const TeskPolicyDataList& accounts);

} // namespace deskwatch

#endif
