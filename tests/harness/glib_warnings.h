#ifndef HARNESS_GLIB_WARNINGS_H
#define HARNESS_GLIB_WARNINGS_H

namespace harness {

/// From now on a critical or a warning of GLib aborts the process.
void makeGlibWarningsFatal();

} // namespace harness

#endif
