#include "components/jet_dialect.h"

#include <QChar>
#include <QList>
#include <cmath>
#include <memory>
#include <sqlite3.h>
#include <vector>

namespace qm {

namespace {

// The dates Jet can hold: 1 January 100 to 31 December 9999.
constexpr double FirstDay = -657434.0;
constexpr double LastDay = 2958466.0;

inline char32_t foldChar(char32_t c) {
    if (c < 0x80)
        return (c >= 'A' && c <= 'Z') ? c + 32 : c;
    return QChar::toCaseFolded(c);
}

// One code point of UTF-8 at s[i]; a byte that starts no valid sequence stands for itself.
inline char32_t decodeUtf8(const unsigned char* s, size_t n, size_t i, size_t& length) {
    const unsigned char b = s[i];
    if (b < 0x80) {
        length = 1;
        return b;
    }
    int extra = 0;
    char32_t c = 0;
    if ((b & 0xE0) == 0xC0) {
        extra = 1;
        c = b & 0x1F;
    } else if ((b & 0xF0) == 0xE0) {
        extra = 2;
        c = b & 0x0F;
    } else if ((b & 0xF8) == 0xF0) {
        extra = 3;
        c = b & 0x07;
    } else {
        length = 1;
        return b;
    }
    if (i + size_t(extra) >= n) {
        length = 1;
        return b;
    }
    for (int k = 1; k <= extra; ++k) {
        const unsigned char next = s[i + k];
        if ((next & 0xC0) != 0x80) {
            length = 1;
            return b;
        }
        c = (c << 6) | (next & 0x3F);
    }
    length = size_t(extra) + 1;
    return c;
}

std::u32string toCodePoints(const QString& text) {
    std::u32string out;
    out.reserve(size_t(text.size()));
    for (const char32_t c : text.toUcs4())
        out.push_back(c);
    return out;
}

} // namespace

bool JetPattern::Class::contains(char32_t c, char32_t folded) const {
    bool hit = false;
    for (const Range& r : ranges) {
        if ((c >= r.low && c <= r.high) || (folded >= r.foldedLow && folded <= r.foldedHigh)) {
            hit = true;
            break;
        }
    }
    return hit != negate;
}

bool JetPattern::compile(const QString& pattern, QString& error) {
    tokens.clear();
    classes.clear();
    const std::u32string p = toCodePoints(pattern);
    for (size_t i = 0; i < p.size(); ++i) {
        const char32_t c = p[i];
        if (c == U'*') {
            if (tokens.empty() || tokens.back().kind != Token::Star)
                tokens.push_back({Token::Star, 0, 0});
        } else if (c == U'?') {
            tokens.push_back({Token::Any, 0, 0});
        } else if (c == U'#') {
            tokens.push_back({Token::Digit, 0, 0});
        } else if (c == U'[') {
            size_t j = i + 1;
            Class cls;
            if (j < p.size() && p[j] == U'!') {
                cls.negate = true;
                ++j;
            }
            const size_t first = j;
            while (j < p.size() && p[j] != U']') {
                char32_t low = p[j];
                char32_t high = low;
                // A '-' between two members is a range; first or last it is itself.
                if (j + 2 < p.size() && p[j + 1] == U'-' && p[j + 2] != U']') {
                    high = p[j + 2];
                    j += 3;
                } else {
                    ++j;
                }
                cls.ranges.push_back({low, high, foldChar(low), foldChar(high)});
            }
            if (j >= p.size()) {
                error = QStringLiteral("Invalid pattern \"%1\": the bracket at position %2 is not closed")
                            .arg(pattern)
                            .arg(i + 1);
                return false;
            }
            if (j == first && !cls.negate) {
                // "[]" matches the empty string: it takes no character.
            } else {
                tokens.push_back({Token::Class, 0, int(classes.size())});
                classes.push_back(std::move(cls));
            }
            i = j;
        } else {
            tokens.push_back({Token::Literal, foldChar(c), 0});
        }
    }
    split();
    return true;
}

bool JetPattern::matchOne(const Token& token, char32_t c) const {
    switch (token.kind) {
    case Token::Literal:
        return foldChar(c) == token.ch;
    case Token::Any:
        return true;
    case Token::Digit:
        return c >= U'0' && c <= U'9';
    case Token::Class:
        return classes[size_t(token.classIndex)].contains(c, foldChar(c));
    case Token::Star:
        break;
    }
    return false;
}

void JetPattern::split() {
    segments.clear();
    leadingStar = !tokens.empty() && tokens.front().kind == Token::Star;
    trailingStar = !tokens.empty() && tokens.back().kind == Token::Star;
    hasStar = false;
    size_t first = 0;
    for (size_t i = 0; i <= tokens.size(); ++i) {
        if (i == tokens.size() || tokens[i].kind == Token::Star) {
            if (i > first)
                segments.push_back({first, i - first});
            first = i + 1;
            if (i < tokens.size())
                hasStar = true;
        }
    }
}

// The tokens of one segment against the text from `pos`; on success `end` is past the last
// character taken.
bool JetPattern::matchAt(const Segment& segment, const unsigned char* s, size_t n, size_t pos,
                         size_t& end) const {
    for (size_t k = 0; k < segment.count; ++k) {
        if (pos >= n)
            return false;
        const Token& token = tokens[segment.first + k];
        const unsigned char b = s[pos];
        if (b < 0x80 && token.kind == Token::Literal) {
            if (foldChar(b) != token.ch)
                return false;
            ++pos;
            continue;
        }
        size_t length = 1;
        const char32_t c = decodeUtf8(s, n, pos, length);
        if (!matchOne(token, c))
            return false;
        pos += length;
    }
    end = pos;
    return true;
}

// Every token but '*' takes exactly one character, so the pattern is fixed segments between stars:
// the first is anchored at the start, the last at the end, and each one between is taken at its
// leftmost place. No recursion and no back-tracking: at most text × pattern steps.
bool JetPattern::match(const unsigned char* s, size_t n) const {
    size_t end = 0;
    if (!hasStar) {
        if (segments.empty())
            return n == 0;
        return matchAt(segments.front(), s, n, 0, end) && end == n;
    }
    size_t pos = 0;
    size_t from = 0;
    size_t to = segments.size();
    if (!leadingStar) {
        if (!matchAt(segments.front(), s, n, 0, pos))
            return false;
        from = 1;
    }
    if (!trailingStar)
        --to;
    for (size_t i = from; i < to; ++i) {
        const Segment& segment = segments[i];
        const Token& head = tokens[segment.first];
        const bool asciiHead = head.kind == Token::Literal && head.ch < 0x80;
        bool found = false;
        while (pos < n) {
            const unsigned char b = s[pos];
            // Quick skip of ASCII characters that can't start the segment.
            if (asciiHead && b < 0x80 && foldChar(b) != head.ch) {
                ++pos;
                continue;
            }
            if (matchAt(segment, s, n, pos, end)) {
                pos = end;
                found = true;
                break;
            }
            size_t length = 1;
            decodeUtf8(s, n, pos, length);
            pos += length;
        }
        if (!found)
            return false;
    }
    if (trailingStar)
        return true;
    // The last segment ends the text: it starts as many characters before the end as it has tokens.
    const Segment& last = segments.back();
    size_t start = n;
    for (size_t k = 0; k < last.count; ++k) {
        if (start <= pos)
            return false;
        --start;
        while (start > pos && (s[start] & 0xC0) == 0x80)
            --start;
    }
    return matchAt(last, s, n, start, end) && end == n;
}

bool JetPattern::match(const QString& text) const {
    const QByteArray utf8 = text.toUtf8();
    return match(reinterpret_cast<const unsigned char*>(utf8.constData()), size_t(utf8.size()));
}

namespace {

void deletePattern(void* pattern) {
    delete static_cast<JetPattern*>(pattern);
}

void likeFunction(sqlite3_context* context, int, sqlite3_value** argv) {
    // like(pattern, text[, escape]): Jet has no escape character; a third argument is ignored.
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    // The pattern is compiled once per statement: SQLite keeps it while argument 0 stays the same.
    const auto* text = sqlite3_value_text(argv[1]);
    const size_t length = size_t(sqlite3_value_bytes(argv[1]));
    if (const auto* kept = static_cast<const JetPattern*>(sqlite3_get_auxdata(context, 0))) {
        sqlite3_result_int(context, kept->match(text, length) ? 1 : 0);
        return;
    }
    const auto* source = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
    auto compiled = std::make_unique<JetPattern>();
    QString error;
    if (!compiled->compile(QString::fromUtf8(source, sqlite3_value_bytes(argv[0])), error)) {
        const QByteArray message = error.toUtf8();
        sqlite3_result_error(context, message.constData(), int(message.size()));
        return;
    }
    sqlite3_result_int(context, compiled->match(text, length) ? 1 : 0);
    // SQLite may free it at once; it is not used after this call.
    sqlite3_set_auxdata(context, 0, compiled.release(), deletePattern);
}

// Text compares without case, for every letter, as Jet compares: overrides SQLite's ASCII-only
// NOCASE on our connections, so the schema keeps the built-in name the stock tools know.
int noCaseCompare(void*, int n1, const void* p1, int n2, const void* p2) {
    const auto* a = static_cast<const unsigned char*>(p1);
    const auto* b = static_cast<const unsigned char*>(p2);
    size_t i = 0, j = 0;
    const size_t na = size_t(n1), nb = size_t(n2);
    while (i < na && j < nb) {
        char32_t ca = a[i], cb = b[j];
        if (ca < 0x80 && cb < 0x80) {
            ca = foldChar(ca);
            cb = foldChar(cb);
            ++i;
            ++j;
        } else {
            size_t la = 1, lb = 1;
            ca = foldChar(decodeUtf8(a, na, i, la));
            cb = foldChar(decodeUtf8(b, nb, j, lb));
            i += la;
            j += lb;
        }
        if (ca != cb)
            return ca < cb ? -1 : 1;
    }
    if (i < na)
        return 1;
    if (j < nb)
        return -1;
    return 0;
}

QString textArg(sqlite3_value* value) {
    const auto* data = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return QString::fromUtf8(data, sqlite3_value_bytes(value));
}

// A date argument is a day number; text in ISO form is accepted too, for hand-typed statements.
bool dayArg(sqlite3_value* value, double& day) {
    switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
        day = sqlite3_value_double(value);
        return true;
    case SQLITE_TEXT: {
        bool ok = false;
        day = textArg(value).toDouble(&ok);
        return ok;
    }
    default:
        return false;
    }
}

void dateDiffFunction(sqlite3_context* context, int, sqlite3_value** argv) {
    double a = 0, b = 0;
    if (!dayArg(argv[1], a) || !dayArg(argv[2], b)) {
        sqlite3_result_null(context);
        return;
    }
    if (!(a >= FirstDay && a < LastDay && b >= FirstDay && b < LastDay)) {
        sqlite3_result_error(context, "DATEDIFF: the date is out of range", -1);
        return;
    }
    const QString interval = textArg(argv[0]).toLower();
    double scale = 0;
    if (interval == QLatin1String("d") || interval == QLatin1String("y"))
        scale = 1;
    else if (interval == QLatin1String("h"))
        scale = 24;
    else if (interval == QLatin1String("n"))
        scale = 1440;
    if (scale == 0) {
        sqlite3_result_error(context, "DATEDIFF: unsupported interval", -1);
        return;
    }
    // Jet counts the boundaries crossed, not elapsed time.
    sqlite3_result_int64(context,
                         sqlite3_int64(std::floor(b * scale)) - sqlite3_int64(std::floor(a * scale)));
}

void chrFunction(sqlite3_context* context, int, sqlite3_value** argv) {
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    const sqlite3_int64 code = sqlite3_value_int64(argv[0]);
    if (code < 0 || code > 0xFFFF) {
        sqlite3_result_error(context, "CHR: the character code is out of range", -1);
        return;
    }
    const QString text = QString(QChar(char16_t(code)));
    const QByteArray utf8 = text.toUtf8();
    sqlite3_result_text(context, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
}

} // namespace

bool jetLike(const QString& pattern, const QString& text) {
    JetPattern compiled;
    QString error;
    return compiled.compile(pattern, error) && compiled.match(text);
}

int jetCompareNoCase(const QString& a, const QString& b) {
    const QByteArray x = a.toUtf8();
    const QByteArray y = b.toUtf8();
    return noCaseCompare(nullptr, int(x.size()), x.constData(), int(y.size()), y.constData());
}

bool installJetDialect(sqlite3* handle) {
    const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
    return sqlite3_create_function(handle, "like", 2, flags, nullptr, likeFunction, nullptr, nullptr) ==
               SQLITE_OK &&
           sqlite3_create_function(handle, "like", 3, flags, nullptr, likeFunction, nullptr, nullptr) ==
               SQLITE_OK &&
           sqlite3_create_function(handle, "datediff", 3, flags, nullptr, dateDiffFunction, nullptr,
                                   nullptr) == SQLITE_OK &&
           sqlite3_create_function(handle, "chr", 1, flags, nullptr, chrFunction, nullptr, nullptr) ==
               SQLITE_OK &&
           sqlite3_create_collation_v2(handle, "NOCASE", SQLITE_UTF8, nullptr, noCaseCompare, nullptr) ==
               SQLITE_OK;
}

} // namespace qm
