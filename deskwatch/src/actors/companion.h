#ifndef DESKWATCH_COMPANION_H
#define DESKWATCH_COMPANION_H

namespace deskwatch {

/// Runs this process as the stand-in for an application of the watch, under the id that its environment names, until
/// the watch is switched off. It keeps the launch requests and messages that it receives and reports them on the bus.
/// Returns the process's exit status.
int runCompanion();

} // namespace deskwatch

#endif
