#ifndef TESK_CONSUMER_POLICY_STORAGE_H
#define TESK_CONSUMER_POLICY_STORAGE_H

#include "TeskConsumerLog.h"
#include "msgs/TeskConsumerItPolicyIndMsg.h"

/// What messages have the service do. Reading a message needs nothing of the service; this is where they meet.
namespace TeskConsumerPolicyStorage {

/// Stores each policy under its account, in order, and enforces what the stored ones demand together. A policy that
/// cannot be stored stops neither the others nor the enforcement. Empty pointers are passed over. A demand for a
/// stronger lock is logged in the caller's name.
void storeAndApply(const TeskConsumerPolicyInfoList& policies,
                   const TeskConsumerPlace& place = TeskConsumerPlace::here());

/// Wipes the device's internal storage at once.
void wipeDevice();

} // namespace TeskConsumerPolicyStorage

#endif
