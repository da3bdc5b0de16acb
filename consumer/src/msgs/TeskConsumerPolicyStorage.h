#ifndef TESK_CONSUMER_POLICY_STORAGE_H
#define TESK_CONSUMER_POLICY_STORAGE_H

#include "msgs/TeskConsumerItPolicyIndMsg.h"

/// What all messages do that carry policy sets.
namespace TeskConsumerPolicyStorage {

/// Stores each policy under its account, in order, and enforces what the stored ones demand together. A policy that
/// cannot be stored stops neither the others nor the enforcement. Empty pointers are passed over.
void storeAndApply(const TeskConsumerPolicyInfoList& policies);

} // namespace TeskConsumerPolicyStorage

#endif
