#include "wbxml/wbxml_tokens.h"

#include <glib.h>

#include <stdexcept>

#include "c_owners.h"

namespace deskwatch {
namespace {

// What the library and the servers call these is the same everywhere.
constexpr unsigned char switchPage = 0x00;
constexpr unsigned char end = 0x01;
constexpr unsigned char inlineText = 0x03;
constexpr unsigned char opaque = 0xC3;
constexpr unsigned char withContent = 0x40;
constexpr unsigned char withAttributes = 0x80;
constexpr unsigned char tagMask = 0x3F;
/// Below it a byte is one of the tokens that mean the same in every code page.
constexpr unsigned char firstTag = 0x05;

constexpr std::string_view replacement = "\xEF\xBF\xBD";

bool isControl(unsigned char byte) {
    return (byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r') || byte == 0x7F;
}

/// A text as XML can hold it.
std::string xmlSafe(std::string_view text) {
    const c::MemoryOwner<char> valid(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
    std::string safe;
    for (const char character : std::string_view(valid.get())) {
        if (isControl(static_cast<unsigned char>(character))) {
            safe += replacement;
        } else {
            safe += character;
        }
    }
    // the two characters of three bytes that are valid UTF-8 and not valid XML
    for (const std::string_view refused : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        for (auto at = safe.find(refused); at != std::string::npos; at = safe.find(refused, at)) {
            safe.replace(at, refused.size(), replacement);
        }
    }
    return safe;
}

class Walk {
public:
    Walk(std::string_view bytes, const TokenChange& change) : bytes_(bytes), change_(change) {}

    std::string run() {
        header();
        do {
            token();
        } while (depth_ > 0 || !hasRoot_);
        return std::move(result_); // what follows the root is not looked at, as the library does
    }

private:
    [[noreturn]] void refuse(const std::string& reason) const {
        throw std::runtime_error("not a WBXML document of ActiveSync: byte " + std::to_string(at_) + ": " + reason);
    }

    unsigned char next() {
        if (at_ >= bytes_.size()) {
            refuse("the document is cut off");
        }
        return static_cast<unsigned char>(bytes_[at_++]);
    }

    /// A number in groups of seven bits, the first group first.
    std::size_t number() {
        std::size_t value = 0;
        for (int groups = 0; groups < 4; ++groups) {
            const unsigned char byte = next();
            value = value << 7U | (byte & 0x7FU);
            if ((byte & 0x80U) == 0) {
                return value;
            }
        }
        refuse("a number of more than four bytes");
    }

    void header() {
        if (bytes_.size() > wbxml_limits::bytes) {
            refuse("the document has " + std::to_string(bytes_.size()) + " bytes; at most " +
                   std::to_string(wbxml_limits::bytes) + " are read");
        }
        if (const auto version = next(); version < 1 || version > 3) {
            refuse("it does not begin with 03, the version");
        }
        number(); // the public identifier: the language is known
        if (number() != 106) {
            refuse("the character set is not UTF-8 (6A)");
        }
        if (number() != 0) {
            refuse("the document has a string table");
        }
        result_ = std::string("\x03\x01\x6A\x00", 4);
    }

    void token() {
        const unsigned char byte = next();
        if (byte == switchPage) {
            page_ = next();
            put(byte);
            put(page_);
        } else if (byte == end) {
            close();
        } else if (byte == inlineText) {
            text(untilNull());
        } else if (byte == opaque) {
            text(take(number()));
        } else if (const auto tag = static_cast<unsigned char>(byte & tagMask);
                   (byte & withAttributes) == 0 && tag >= firstTag) {
            open(tag, (byte & withContent) != 0);
        } else {
            --at_;
            refuse("a token that the protocol does not use");
        }
    }

    void open(unsigned char tag, bool hasContent) {
        if (depth_ == 0 && hasRoot_) {
            refuse("a second root");
        }
        hasRoot_ = true;
        if (++elements_ > wbxml_limits::elements) {
            refuse("more than " + std::to_string(wbxml_limits::elements) + " elements");
        }
        put(static_cast<unsigned char>(change_(page_, tag) | (hasContent ? withContent : 0U)));
        if (hasContent && ++depth_ > wbxml_limits::levels) {
            refuse("more than " + std::to_string(wbxml_limits::levels) + " levels");
        }
    }

    void close() {
        if (depth_ == 0) {
            refuse("an end without an element");
        }
        put(end);
        --depth_;
    }

    void text(std::string_view text) {
        if (depth_ == 0) {
            refuse("text outside of the elements");
        }
        put(inlineText);
        result_ += xmlSafe(text);
        put('\0');
    }

    std::string_view untilNull() {
        const auto null = bytes_.find('\0', at_);
        if (null == std::string_view::npos) {
            at_ = bytes_.size();
            refuse("the document is cut off");
        }
        const auto text = bytes_.substr(at_, null - at_);
        at_ = null + 1;
        return text;
    }

    std::string_view take(std::size_t size) {
        if (size > bytes_.size() - at_) {
            refuse("data of " + std::to_string(size) + " bytes, and the document is cut off");
        }
        const auto data = bytes_.substr(at_, size);
        at_ += size;
        return data;
    }

    void put(unsigned char byte) { result_ += static_cast<char>(byte); }

    std::string_view bytes_;
    const TokenChange& change_;
    std::size_t at_ = 0;
    std::string result_;
    unsigned char page_ = 0;
    int depth_ = 0;
    int elements_ = 0;
    bool hasRoot_ = false;
};

} // namespace

std::string checkedWbxml(std::string_view bytes, const TokenChange& change) {
    return Walk(bytes, change).run();
}

} // namespace deskwatch
