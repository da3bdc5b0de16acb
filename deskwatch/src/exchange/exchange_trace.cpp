#include "exchange/exchange_trace.h"

#include <sstream>
#include <stdexcept>

#include "provisioning/exchange_trace_format.h"
#include "text/text_table.h"
#include "text/value_text.h"
#include "wbxml/element_xml.h"
#include "wbxml/wbxml_codec.h"

namespace deskwatch {
namespace {

/// More of a body that is not WBXML helps nobody.
constexpr std::size_t shownText = 2000;
constexpr std::size_t bytesInLine = 32;

std::string hexadecimal(const std::string& bytes, const std::string& mark) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string lines;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const auto byte = static_cast<unsigned char>(bytes[at]);
        lines += at % bytesInLine == 0 ? (at == 0 ? "" : "\n") + mark : "";
        lines.append(" ").append(1, digits[byte / 16]).append(1, digits[byte % 16]);
    }
    return lines.empty() ? "" : lines + "\n";
}

std::string marked(const std::string& text, const std::string& mark) {
    std::istringstream stream(text);
    std::string lines;
    for (std::string line; std::getline(stream, line);) {
        lines += mark + " " + printable(line) + "\n";
    }
    return lines;
}

std::string bodyLines(const std::string& body, const std::string& direction) {
    if (!looksLikeWbxml(body)) {
        return marked(body.substr(0, shownText), direction + " ");
    }
    try {
        return marked(elementXml(decodeWbxml(body)), direction + exchange_trace::xmlMark) +
               hexadecimal(body, direction + exchange_trace::bytesMark);
    } catch (const std::exception& error) {
        return direction + " " + error.what() + "\n" + hexadecimal(body, direction + exchange_trace::bytesMark);
    }
}

std::string requestLines(const HttpRequest& request) {
    std::string text = "> " + request.method + " " + request.url + "\n";
    for (const auto& [name, value] : request.headers) {
        text += "> " + name + ": " + (name == "Authorization" || name == "Cookie" ? "(not shown)" : printable(value)) +
                "\n";
    }
    return text + bodyLines(request.body, ">") + "\n";
}

std::string replyLines(const HttpReply& reply) {
    std::string text = "< " + std::to_string(reply.status) + "\n";
    for (const auto& [name, value] : reply.headers) {
        text += "< " + name + ": " + (name == "set-cookie" ? "(not shown)" : printable(value)) + "\n";
    }
    return text + bodyLines(reply.body, "<") + "\n";
}

} // namespace

TracedTransport::TracedTransport(Transport& transport, const std::string& file) : transport_(transport), file_(file) {
    file_.write(std::string(exchange_trace::firstLine) + "\n\n");
}

HttpReply TracedTransport::send(const HttpRequest& request) {
    file_.write(requestLines(request));
    try {
        auto reply = transport_.send(request);
        file_.write(replyLines(reply));
        return reply;
    } catch (const std::runtime_error& error) {
        file_.write(std::string("< ") + error.what() + "\n\n");
        throw;
    }
}

void TracedTransport::pause(int seconds) {
    file_.write("(a pause of " + counted(static_cast<std::size_t>(seconds), "second") + ")\n\n");
    transport_.pause(seconds);
}

} // namespace deskwatch
