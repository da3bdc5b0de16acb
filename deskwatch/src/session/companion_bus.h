#ifndef DESKWATCH_COMPANION_BUS_H
#define DESKWATCH_COMPANION_BUS_H

#include <string>

#include "c_owners.h"
#include "tesk-desk-bus.h"

/// Where the stand-in for an application is found, beside what every application has.
namespace deskwatch::companion_bus {

/// The object that tesk.desk.Companion is at.
inline constexpr char path[] = "/tesk/desk/companion";

/// The object of an application's stand-in. It has no properties, and nobody listens to it here. Throws
/// std::runtime_error when the bus does not answer.
c::ObjectOwner<TeskDeskCompanion> companionOf(GDBusConnection* bus, const std::string& application);

} // namespace deskwatch::companion_bus

#endif
