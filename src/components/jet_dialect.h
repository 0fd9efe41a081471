#pragma once

#include <QString>
#include <cstddef>
#include <vector>

struct sqlite3;

namespace qm {

// Where this engine reads the statements differently from the Jet dialect they were written in.
// This is the one list of such deviations; statements keep Jet's text everywhere else.
//  - LIKE: replaced on every connection by jetLike() ('*', '?', '#', [abc], [!abc], no case).
//  - Text compares without case: text columns are declared COLLATE NOCASE, and our connections
//    replace SQLite's ASCII-only NOCASE by one that folds every letter (a stock sqlite3 tool still
//    reads the file, folding ASCII only).
//  - DATEDIFF('d', a, b) and CHR(n): registered functions; a date is a REAL day number.
//  - String concatenation: Jet's '+' is written '||' in our statements.
//  - Sorting by name: ORDER BY terms of a dataset carry COLLATE NOCASE, as Jet sorted text.
//  - True / False: SQLite's own keywords (1 / 0); booleans are stored as 0 and 1.
//  - No foreign keys and no cascades in the engine: the program runs every cascade itself.

/// A Jet LIKE pattern compiled once: '*' any run, '?' one character, '#' one digit 0-9, [abc],
/// [a-z], [!abc]; "[]" matches the empty string; letters match without case.
class JetPattern {
public:
    /// False, with a message, when a '[' is not closed.
    bool compile(const QString& pattern, QString& error);
    /// Matches UTF-8 text in at most text × pattern steps.
    bool match(const unsigned char* utf8, size_t length) const;
    bool match(const QString& text) const;

private:
    struct Token {
        enum Kind : unsigned char { Literal, Any, Digit, Class, Star } kind;
        char32_t ch; ///< the case-folded letter of a literal
        int classIndex;
    };
    struct Range {
        char32_t low, high, foldedLow, foldedHigh;
    };
    struct Class {
        bool negate = false;
        std::vector<Range> ranges;
        bool contains(char32_t c, char32_t folded) const;
    };
    struct Segment {
        size_t first, count; ///< tokens between two stars
    };
    void split();
    bool matchOne(const Token& token, char32_t c) const;
    bool matchAt(const Segment& segment, const unsigned char* s, size_t n, size_t pos, size_t& end) const;
    std::vector<Token> tokens;
    std::vector<Class> classes;
    std::vector<Segment> segments;
    bool leadingStar = false;
    bool trailingStar = false;
    bool hasStar = false;
};

/// Jet-style LIKE: '*' any run, '?' one character, '#' one digit, [abc], [a-z], [!abc];
/// case-insensitive. Anything else matches itself.
bool jetLike(const QString& pattern, const QString& text);

/// Compares text as the engine's NOCASE collation does on our connections: every letter without
/// case, by code point.
int jetCompareNoCase(const QString& a, const QString& b);

/// Installs the Jet dialect on one connection: LIKE, DATEDIFF('d', a, b), CHR(n).
/// Returns false when the engine refuses a registration.
bool installJetDialect(sqlite3* handle);

} // namespace qm
