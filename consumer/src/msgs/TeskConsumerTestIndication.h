#ifndef TESK_CONSUMER_TEST_INDICATION_H
#define TESK_CONSUMER_TEST_INDICATION_H

#include <string>

#include "rules/TeskPolicyData.h"

/// The policy indication that the diagnostic interface sends in the mail application's place.
namespace TeskConsumerTestIndication {

/// The account of every such message.
inline constexpr int accountId = 999;

/// The message, one line of JSON, that gives the test account the values of a record; empty while memory is short.
std::string textOf(const TeskPolicyData& record);

} // namespace TeskConsumerTestIndication

#endif
