#ifndef TEST_DBUS_H
#define TEST_DBUS_H

#include <string>

#include "rules/TeskPolicyData.h"

/// The diagnostic bus interface: a developer's way to drive the service without the mail application. What comes in
/// runs through the same path as a request over the message port.
namespace TestDbus {

/// Asks for the interface's name on the system bus; the object follows once the bus is there. Returns whether the
/// asking worked.
bool init();

/// A policy indication for the test account with the values of a record. The caller deletes it.
std::string* __getPolicyDataJson(const TeskPolicyData& record);

} // namespace TestDbus

#endif
