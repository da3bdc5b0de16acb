#ifndef FUZZ_INSTANCES_H
#define FUZZ_INSTANCES_H

/// The service's process-wide instances. The service makes each on first use and keeps it until the process ends; a
/// process per input would be a hundred times slower, so here they end while the process goes on.
namespace instances {

/// Ends those that exist, so that whoever asks next gets a new one. A platform must exist, since they let go of what
/// they have of it.
void endAll();

} // namespace instances

#endif
