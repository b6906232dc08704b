#pragma once

#include <QString>

// The pattern notation of account-code access entries and fund masks:
//   *        any run of characters, also none
//   ?        exactly one character
//   #        exactly one digit 0-9
//   [list]   one character of the list; ranges as in [A-F]; [!list] negates
//   other    that character
// Letters compare without regard to case. The whole text must match. A
// pattern with an unclosed bracket matches nothing.
bool matchesPattern(const QString &text, const QString &pattern);
