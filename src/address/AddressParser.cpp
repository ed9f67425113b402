#include "address/AddressParser.h"

#include "address/AddressPath.h"
#include "address/AddressText.h"
#include "address/Authority.h"
#include "address/Hosts.h"
#include "address/PercentSets.h"
#include "address/QueryEncoding.h"
#include "address/Schemes.h"
#include "base/Text.h"

#include <cstddef>
#include <utility>

namespace nv {

namespace {

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isOfScheme(char c) {
    return isLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}

/// The standard's state machine over whole parts instead of characters. Each state reads what is
/// its own off the front of the rest and names the next one.
class AddressParser {
  public:
    AddressParser(std::string_view text, const AddressParts *base, std::string_view charset)
        : m_rest(text), m_base(base), m_charset(charset) {}

    std::optional<AddressParts> parsed() {
        State state = &AddressParser::scheme;
        while (state.read != nullptr)
            state = (this->*state.read)();
        return m_isFailed ? std::nullopt : std::optional(std::move(m_parts));
    }

  private:
    /// A function of this class, or none at the end.
    struct State {
        using Read = State (AddressParser::*)();
        State() = default;
        State(Read function) : read(function) {} // NOLINT: states name the next one
        Read read = nullptr;
    };

    // What stands at the front of the rest.
    bool at(char c) const { return m_rest.starts_with(c); }
    bool isSpecial() const { return isSpecialScheme(m_parts.scheme); }
    bool isFile() const { return m_parts.scheme == "file"; }
    bool atSlash() const { return at('/') || (isSpecial() && at('\\')); }
    void skip(std::size_t count = 1) { m_rest.remove_prefix(count); }

    std::string_view take(std::string_view ends) {
        const std::string_view taken = m_rest.substr(0, m_rest.find_first_of(ends));
        skip(taken.size());
        return taken;
    }
    std::string_view endsOfSegment() const { return isSpecial() ? "/\\?#" : "/?#"; }

    State failed() {
        m_isFailed = true;
        return {};
    }

    void takePlaceOfBase() {
        m_parts.username = m_base->username;
        m_parts.password = m_base->password;
        m_parts.host = m_base->host;
        m_parts.port = m_base->port;
    }

    State scheme() {
        std::size_t length = 0;
        if (!m_rest.empty() && isLetter(m_rest.front()))
            while (length < m_rest.size() && isOfScheme(m_rest[length]))
                ++length;
        if (length == 0 || length == m_rest.size() || m_rest[length] != ':')
            return &AddressParser::noScheme;
        m_parts.scheme = toLower(m_rest.substr(0, length));
        skip(length + 1);
        if (isFile()) {
            m_parts.host.emplace();
            return &AddressParser::file;
        }
        if (isSpecial())
            return m_base != nullptr && m_base->scheme == m_parts.scheme &&
                           !m_rest.starts_with("//")
                       ? &AddressParser::relative
                       : &AddressParser::anySlashes;
        if (!at('/'))
            return &AddressParser::opaquePath;
        skip();
        return &AddressParser::pathOrAuthority;
    }

    State noScheme() {
        if (m_base == nullptr || (m_base->isPathOpaque && !at('#')))
            return failed();
        m_parts.scheme = m_base->scheme;
        if (m_base->isPathOpaque) {
            m_parts.path = m_base->path;
            m_parts.isPathOpaque = true;
            m_parts.query = m_base->query;
            return &AddressParser::queryOrFragment;
        }
        if (isFile()) {
            m_parts.host.emplace();
            return &AddressParser::file;
        }
        return &AddressParser::relative;
    }

    /// Behind the "/" that follows a scheme that isn't special.
    State pathOrAuthority() {
        if (!at('/'))
            return &AddressParser::path;
        skip();
        return &AddressParser::authority;
    }

    State relative() {
        if (atSlash()) {
            skip();
            return &AddressParser::relativeSlash;
        }
        takePlaceOfBase();
        return &AddressParser::restOfBase;
    }

    State relativeSlash() {
        if (atSlash()) {
            if (isSpecial())
                return &AddressParser::anySlashes;
            skip();
            return &AddressParser::authority;
        }
        takePlaceOfBase();
        return &AddressParser::path;
    }

    /// The base's path and query, as far as nothing else is said.
    State restOfBase() {
        m_parts.path = m_base->path;
        if (m_rest.empty() || at('#'))
            m_parts.query = m_base->query;
        if (m_rest.empty() || at('#') || at('?'))
            return &AddressParser::queryOrFragment;
        if (isFile() && startsWithDriveLetter(m_rest))
            m_parts.path.clear();
        else
            shortenPath(m_parts.path, isFile());
        return &AddressParser::path;
    }

    State anySlashes() {
        while (at('/') || at('\\'))
            skip();
        return &AddressParser::authority;
    }

    State authority() {
        return readAuthority(take(endsOfSegment()), m_parts) ? &AddressParser::pathStart : failed();
    }

    State file() {
        if (atSlash()) {
            skip();
            return &AddressParser::fileSlash;
        }
        if (m_base == nullptr || m_base->scheme != "file")
            return &AddressParser::path;
        m_parts.host = m_base->host;
        return &AddressParser::restOfBase;
    }

    State fileSlash() {
        if (atSlash()) {
            skip();
            return &AddressParser::fileHost;
        }
        if (m_base != nullptr && m_base->scheme == "file") {
            m_parts.host = m_base->host;
            const std::string_view first = std::string_view(m_base->path).substr(0, 4);
            const bool hasDrive = first.size() > 2 && first[2] == ':' &&
                                  isDriveLetter(first.substr(1, 2)) &&
                                  (first.size() == 3 || first[3] == '/');
            if (hasDrive && !startsWithDriveLetter(m_rest))
                m_parts.path = first.substr(0, 3);
        }
        return &AddressParser::path;
    }

    State fileHost() {
        const std::string_view before = m_rest;
        const std::string_view text = take(endsOfSegment());
        if (isDriveLetter(text)) {
            m_rest = before;
            return &AddressParser::path;
        }
        if (text.empty())
            return &AddressParser::pathStart;
        m_parts.host = parsedHost(text, false);
        if (!m_parts.host)
            return failed();
        if (m_parts.host == "localhost")
            m_parts.host->clear();
        return &AddressParser::pathStart;
    }

    State pathStart() {
        if (atSlash())
            skip();
        else if (!isSpecial() && (m_rest.empty() || at('?') || at('#')))
            return &AddressParser::queryOrFragment;
        return &AddressParser::path;
    }

    /// The segments; the slash in front of the first one is read.
    State path() {
        for (;;) {
            std::string segment = percentEncoded(take(endsOfSegment()), PercentSet::path);
            const bool isLast = !atSlash();
            if (isDoubleDot(segment)) {
                shortenPath(m_parts.path, isFile());
                segment.clear();
            } else if (!isSingleDot(segment)) {
                if (isFile() && m_parts.path.empty() && isDriveLetter(segment))
                    segment[1] = ':';
                m_parts.path += '/' + segment;
                segment.clear();
                if (isLast)
                    return &AddressParser::queryOrFragment;
                skip();
                continue;
            }
            if (isLast) {
                m_parts.path += '/';
                return &AddressParser::queryOrFragment;
            }
            skip();
        }
    }

    State opaquePath() {
        m_parts.isPathOpaque = true;
        const std::string_view text = take("?#");
        m_parts.path = percentEncoded(text, PercentSet::control);
        // A blank at the end would be lost with the query and the fragment behind it.
        if (!m_rest.empty() && m_parts.path.ends_with(' '))
            m_parts.path.replace(m_parts.path.size() - 1, 1, "%20");
        return &AddressParser::queryOrFragment;
    }

    State queryOrFragment() {
        if (at('?')) {
            skip();
            const bool isUnicode =
                !isSpecial() || m_parts.scheme == "ws" || m_parts.scheme == "wss";
            m_parts.query =
                encodedQuery(take("#"), isSpecial() ? PercentSet::specialQuery : PercentSet::query,
                             isUnicode ? std::string_view() : m_charset);
        }
        if (at('#'))
            m_parts.fragment = percentEncoded(m_rest.substr(1), PercentSet::fragment);
        return {};
    }

    std::string_view m_rest;
    const AddressParts *m_base;
    std::string_view m_charset;
    AddressParts m_parts;
    bool m_isFailed = false;
};

} // namespace

std::optional<AddressParts> parsedAddress(std::string_view text, const AddressParts *base,
                                          std::string_view charset) {
    const std::string clean = addressText(text);
    return AddressParser(clean, base, charset).parsed();
}

} // namespace nv
