#ifndef KILL_POINTS_APART_H
#define KILL_POINTS_APART_H

#include <functional>

namespace kill_points {

/// What a process of its own does; the result, below `failed`, becomes its exit status.
using Body = std::function<int()>;

/// The exit status of a body in which an expectation did not hold or an exception was left alone.
constexpr int failed = 255;

/// Runs the body and ends this process without its exit handlers, which belong to the parent.
[[noreturn]] void endAfter(const Body& body);

/// Runs the body in a process of its own, so that each run finds the service untouched. Returns its exit status, and
/// `failed` also when it ended in another way.
int runApart(const Body& body);

} // namespace kill_points

#endif
