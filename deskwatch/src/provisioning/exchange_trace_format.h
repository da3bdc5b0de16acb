#ifndef DESKWATCH_EXCHANGE_TRACE_FORMAT_H
#define DESKWATCH_EXCHANGE_TRACE_FORMAT_H

namespace deskwatch::exchange_trace {

/// By which a trace of an exchange with a server is known.
inline constexpr char firstLine[] = "# deskwatch exchange trace";

// After `>` of a request or `<` of a reply.
inline constexpr char xmlMark[] = "|";
inline constexpr char bytesMark[] = "=";

} // namespace deskwatch::exchange_trace

#endif
