#ifndef DESKWATCH_EXCHANGE_TRACE_H
#define DESKWATCH_EXCHANGE_TRACE_H

#include <string>

#include "exchange/transport.h"
#include "text/output_file.h"

namespace deskwatch {

/// The way to a server that writes down what goes over it: headers without the password, documents as XML with their
/// bytes below. Lines of requests begin with `>`, lines of replies with `<`; XML has `|` after that and bytes `=`.
class TracedTransport : public Transport {
public:
    /// Throws std::runtime_error when the file cannot be written.
    TracedTransport(Transport& transport, const std::string& file);

    HttpReply send(const HttpRequest& request) override;
    void pause(int seconds) override;

private:
    Transport& transport_;
    OutputFile file_;
};

} // namespace deskwatch

#endif
