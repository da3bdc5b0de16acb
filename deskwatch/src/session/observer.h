#ifndef DESKWATCH_OBSERVER_H
#define DESKWATCH_OBSERVER_H

namespace deskwatch {

/// The id under which this program looks at a watch; no application of the watch has it.
inline constexpr char observerId[] = "tesk.desk.observer";

} // namespace deskwatch

#endif
