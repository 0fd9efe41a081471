#pragma once

#include <QString>

struct sqlite3;

namespace qm {

// Where this engine reads the statements differently from the Jet dialect they were written in.
// This is the one list of such deviations; statements keep Jet's text everywhere else.
//  - LIKE: replaced on every connection by jetLike() ('*', '?', '#', [abc], [!abc], no case).
//  - DATEDIFF('d', a, b) and CHR(n): registered functions; a date is a REAL day number.
//  - String concatenation: Jet's '+' is written '||' in our statements.
//  - Sorting by name: ORDER BY terms of a dataset carry COLLATE NOCASE, as Jet sorted text.
//  - True / False: SQLite's own keywords (1 / 0); booleans are stored as 0 and 1.
//  - No foreign keys and no cascades in the engine: the program runs every cascade itself.

/// Jet-style LIKE: '*' any run, '?' one character, '#' one digit, [abc], [a-z], [!abc];
/// case-insensitive. Anything else matches itself.
bool jetLike(const QString& pattern, const QString& text);

/// Installs the Jet dialect on one connection: LIKE, DATEDIFF('d', a, b), CHR(n).
/// Returns false when the engine refuses a registration.
bool installJetDialect(sqlite3* handle);

} // namespace qm
