#ifndef FAULTS_FAULT_H
#define FAULTS_FAULT_H

#include <string>
#include <vector>

#include "faults.h"

/// A call that fails: the nth of its function, or every one of them.
struct Fault {
    static constexpr int always = 0;

    std::string function;
    int nth = always;
    int code = -1;

    void arm(fake::Faults& faults) const;

    /// "vconf_set_int, call 2: -1".
    std::string text() const;
};

/// The codes with which a function is seen to fail; 0 claims success and does nothing.
std::vector<int> codesOf(const std::string& function);

/// Whether a failing call of the function leaves an object alive that nobody can release any more.
bool releasesAnObject(const std::string& function);

#endif
