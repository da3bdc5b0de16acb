#ifndef DESKWATCH_EVENT_FORM_H
#define DESKWATCH_EVENT_FORM_H

#include <stdexcept>
#include <string>

#include "recording/bus_trace.h"
#include "recording/recorded_state.h"

namespace deskwatch {

/// What is wrong with a line of a recording. The member at fault has its place there, unless it is missing.
class FormError : public std::runtime_error {
public:
    FormError(std::string member, const std::string& what) : std::runtime_error(what), member_(std::move(member)) {}

    const std::string& member() const { return member_; }

private:
    std::string member_;
};

/// Passes what a replay can do and compare. A replay that passed over what it does not know would compare less than the
/// reader thinks. Throws FormError.
void requireEvent(const TraceEvent& event);

/// The state that the first line of a recording tells, of this format or an earlier one. Throws FormError.
RecordedState stateOf(const TraceEvent& head);

} // namespace deskwatch

#endif
