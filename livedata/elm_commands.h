#pragma once

#include <QStringList>
#include <optional>
#include <span>

namespace brivant {

// What the versions of the ELM327 are told apart by: commands, each with the version that brought it, by the
// maker's lists of AT commands and of versions. None changes anything that lasts: it asks for something, or
// sets what a reset sets.
struct elm_command {
    const char* text;
    const char* since;  // "1.4b"
    const char* answer; // what one that is known is answered, alternatives separated by "|"
};
std::span<const elm_command> elm_commands();

// No version has it: what is answered OK to it is answered OK to anything.
inline const QString made_up_command = QStringLiteral("AT QQ");

// The version in a greeting ("ELM327v1.4b": "1.4b"), "" for none.
QString version_in(const QString& greeting);
// Its place among those that were made; nothing for one that never was, as 1.5.
std::optional<int> place_of_version(const QString& version);

// A greeting held against the commands that are known, and those that are not. Honest is only what knows all
// commands of its version.
struct version_judgement {
    enum class honesty { unknown, honest, no_such_version, too_new } how = honesty::unknown;
    QString said;        // "2.1"
    QStringList lacking; // commands of that version, or one before, that it does not know
    qsizetype of = 0;    // so many of them were tried
    QString behaves_as;  // the newest version of which nothing is lacking, among those that brought commands
};
version_judgement judge_version(const QString& greeting, const QStringList& known,
                                const QStringList& unknown);

} // namespace brivant
