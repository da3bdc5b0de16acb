#ifndef DESKWATCH_COMPANION_BUS_H
#define DESKWATCH_COMPANION_BUS_H

/// Where the stand-in for an application is found, beside what every application has.
namespace deskwatch::companion_bus {

/// The object that tesk.desk.Companion is at.
inline constexpr char path[] = "/tesk/desk/companion";

} // namespace deskwatch::companion_bus

#endif
