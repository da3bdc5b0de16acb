#ifndef HARNESS_SERVICE_MAIN_H
#define HARNESS_SERVICE_MAIN_H

/// The service's main, which the build gives this name, since the test's program brings another.
int teskMain(int argc, char** argv);

#endif
