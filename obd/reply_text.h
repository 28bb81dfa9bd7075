#pragma once

#include <QString>
#include <QStringList>

namespace brivant {

// Adapter text as text: normalising a reply, reading and writing hex, splitting. All functions are pure.

// The form of a reply that is checked and handed to the controllers: the searching notice, "...", blanks and
// ">" removed, and the line ends at either end; inner line ends stay. "SEARCHING...\r41 00 BE\r\r>" gives
// "4100BE", "NO DATA" gives "NODATA".
QString prepReply(const QString& reply);
// A gentler form that keeps the line structure: line ends folded to "\r", ">" removed, cut by fix_3dots.
QString clean_a_reply(const QString& reply);
// From the first "..." on (dots kept) if there is one; "\r" trimmed at both ends, one appended.
QString fix_3dots(const QString& text);
// Without leading and trailing blanks.
QString myTrim(const QString& text);
// The reply as given (blanks kept) when its characters 2-3, blanks removed, equal `this_bad_char`; else "~".
// The PID is not used.
QString check_bad_reply(const QString& reply, const QString& this_pid, const QString& this_bad_char);

// True for a text of nothing but hex digits, at least one.
bool is_hex(QStringView text);
// Hex text read as an unsigned number, leading blanks skipped, up to the first character that is not a hex
// digit; none gives 0. A number that does not fit gives the greatest one.
unsigned convertStr2Byte(QStringView hex);
// At least two upper-case hex digits.
QString convertByte2HexStr(unsigned value);
// 0 for a character that is no hex digit.
int charToNibble(QChar character);
// The bytes of the text, one for each pair; none when its length is odd.
QByteArray fromHexString(QStringView hex);

// True when `text` contains any of the tokens, which "|" separates; upper and lower case differ. A null token
// list gives false, and an empty token is in no text.
bool string_has_Tokens(const QString& text, const QString& these_tokens);
// The number of non-empty pieces between delimiter characters in the first 300 bytes of the text.
int count_items_in_Str(const QString& text, const QString& this_token);
// The pieces between separators, empty ones kept. An empty separator leaves the text in one piece.
QStringList Pull_line_into_array(const QString& text, const QString& this_token);
// Every non-empty piece between delimiter characters, each followed by the replacement; a text without
// delimiters is returned unchanged.
QString myReplace(const QString& text, const QString& this_str, const QString& with_this_str);
// Padded to the length on the right or the left; a longer text is returned unchanged.
QString padString(const QString& text, QChar this_pad_char, qsizetype this_padded_len, bool onRight);
// The same with a text to pad with, repeated and cut as needed.
QString padLeft(const QString& text, qsizetype padded_size, const QString& padChar);
QString padRight(const QString& text, qsizetype padded_size, const QString& padChar);
// Every match of the pattern replaced by the template, case-insensitively; "\1" in the template stands for
// the first group. A pattern that is no regular expression changes nothing.
QString replaceStrRegx(const QString& text, const QString& thisRegx, const QString& withThisStr);

} // namespace brivant
