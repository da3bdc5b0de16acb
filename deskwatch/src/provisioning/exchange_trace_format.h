#ifndef DESKWATCH_EXCHANGE_TRACE_FORMAT_H
#define DESKWATCH_EXCHANGE_TRACE_FORMAT_H

#include <string>

namespace deskwatch::exchange_trace {

/// By which a trace of an exchange with a server is known.
inline constexpr char firstLine[] = "# deskwatch exchange trace";

// After `>` of a request or `<` of a reply.
inline constexpr char xmlMark[] = "|";
inline constexpr char bytesMark[] = "=";

/// Whether a text is such a trace.
bool isTrace(const std::string& text);

/// The XML of the last reply that brought a policy, in the lines in which the trace has it; the others are empty. Empty
/// when there is none.
std::string lastPolicy(const std::string& trace);

} // namespace deskwatch::exchange_trace

#endif
