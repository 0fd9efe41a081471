#include "components/jet_dialect.h"

#include <cmath>
#include <sqlite3.h>

namespace qm {

namespace {

bool sameLetter(QChar a, QChar b) {
    return a == b || a.toCaseFolded() == b.toCaseFolded();
}

// Matches a bracket class starting at pattern[p] == '['; sets end past ']'. A class without its
// closing bracket is taken as a literal '['.
bool matchClass(const QString& pattern, qsizetype p, QChar c, qsizetype& end, bool& isClass) {
    qsizetype q = p + 1;
    bool negate = false;
    if (q < pattern.size() && pattern.at(q) == QLatin1Char('!')) {
        negate = true;
        ++q;
    }
    bool hit = false;
    bool first = true;
    while (q < pattern.size() && (first || pattern.at(q) != QLatin1Char(']'))) {
        first = false;
        const QChar lo = pattern.at(q);
        if (q + 2 < pattern.size() && pattern.at(q + 1) == QLatin1Char('-') &&
            pattern.at(q + 2) != QLatin1Char(']')) {
            const QChar hi = pattern.at(q + 2);
            const QChar folded = c.toCaseFolded();
            if ((c >= lo && c <= hi) || (folded >= lo.toCaseFolded() && folded <= hi.toCaseFolded()))
                hit = true;
            q += 3;
        } else {
            if (sameLetter(lo, c))
                hit = true;
            ++q;
        }
    }
    if (q >= pattern.size()) {
        isClass = false;
        return false;
    }
    isClass = true;
    end = q + 1;
    return hit != negate;
}

bool matchFrom(const QString& pattern, qsizetype p, const QString& text, qsizetype t) {
    while (p < pattern.size()) {
        const QChar pc = pattern.at(p);
        if (pc == QLatin1Char('*')) {
            while (p < pattern.size() && pattern.at(p) == QLatin1Char('*'))
                ++p;
            if (p == pattern.size())
                return true;
            for (qsizetype k = t; k <= text.size(); ++k)
                if (matchFrom(pattern, p, text, k))
                    return true;
            return false;
        }
        if (t >= text.size())
            return false;
        const QChar tc = text.at(t);
        if (pc == QLatin1Char('?')) {
            ++p;
        } else if (pc == QLatin1Char('#')) {
            if (!tc.isDigit())
                return false;
            ++p;
        } else if (pc == QLatin1Char('[')) {
            qsizetype end = p;
            bool isClass = false;
            const bool hit = matchClass(pattern, p, tc, end, isClass);
            if (isClass) {
                if (!hit)
                    return false;
                p = end;
            } else {
                if (tc != pc)
                    return false;
                ++p;
            }
        } else {
            if (!sameLetter(pc, tc))
                return false;
            ++p;
        }
        ++t;
    }
    return t == text.size();
}

QString textArg(sqlite3_value* value) {
    const auto* data = reinterpret_cast<const char16_t*>(sqlite3_value_text16(value));
    return QString::fromUtf16(data, sqlite3_value_bytes16(value) / 2);
}

void likeFunction(sqlite3_context* context, int argc, sqlite3_value** argv) {
    // like(pattern, text[, escape]): Jet has no escape character; a third argument is ignored.
    Q_UNUSED(argc);
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    sqlite3_result_int(context, jetLike(textArg(argv[0]), textArg(argv[1])) ? 1 : 0);
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
    const QString interval = textArg(argv[0]).toLower();
    if (interval == QLatin1String("d") || interval == QLatin1String("y")) {
        // Jet counts the day boundaries crossed, not elapsed time.
        sqlite3_result_int64(context, sqlite3_int64(std::floor(b)) - sqlite3_int64(std::floor(a)));
    } else if (interval == QLatin1String("h")) {
        sqlite3_result_int64(context, sqlite3_int64(std::floor(b * 24)) - sqlite3_int64(std::floor(a * 24)));
    } else if (interval == QLatin1String("n")) {
        sqlite3_result_int64(context,
                             sqlite3_int64(std::floor(b * 1440)) - sqlite3_int64(std::floor(a * 1440)));
    } else {
        sqlite3_result_error(context, "DATEDIFF: unsupported interval", -1);
    }
}

void chrFunction(sqlite3_context* context, int, sqlite3_value** argv) {
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    const QString text(QChar(char16_t(sqlite3_value_int(argv[0]))));
    sqlite3_result_text16(context, text.utf16(), int(text.size() * 2), SQLITE_TRANSIENT);
}

} // namespace

bool jetLike(const QString& pattern, const QString& text) {
    return matchFrom(pattern, 0, text, 0);
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
               SQLITE_OK;
}

} // namespace qm
