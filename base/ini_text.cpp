#include "base/ini_text.h"

#include "base/ini_value.h"

#include <QList>
#include <algorithm>

namespace brivant {

namespace {

struct ini_line {
    QByteArray text;         // with its line end
    QString key;             // of the general section, "" for all else
    bool is_heading = false; // of the general section
};

bool is_line_end(char c) {
    return c == '\n' || c == '\r';
}

// The line that begins at `from`. Quoted text goes on over line ends, and so does what follows a backslash. A
// last one that is not whole is made so: what is put behind it must not become a part of it.
QByteArray line_at(const QByteArray& ini, qsizetype from) {
    bool is_quoted = false;
    bool is_comment = false;
    qsizetype at = from;
    for (; at < ini.size(); ++at) {
        const char c = ini.at(at);
        if (is_line_end(c) && (!is_quoted || is_comment))
            return ini.sliced(from, at + 1 - from);
        if (is_comment)
            continue;
        is_comment = c == ';' && !is_quoted;
        if (c == '"')
            is_quoted = !is_quoted;
        if (c == '\\' && ++at + 1 < ini.size() && is_line_end(ini.at(at)) && is_line_end(ini.at(at + 1)) &&
            ini.at(at) != ini.at(at + 1))
            ++at;
    }
    const qsizetype dangling = at > ini.size() ? 1 : 0; // a backslash with nothing behind it
    return ini.sliced(from, ini.size() - from - dangling) + (is_quoted ? "\"\n" : "\n");
}

QList<ini_line> lines_of(const QByteArray& ini) {
    QList<ini_line> lines;
    bool is_general = true; // so is what stands above the first heading
    for (qsizetype at = 0; at < ini.size(); at += lines.last().text.size()) {
        ini_line line{line_at(ini, at), {}, false};
        const QByteArray text = line.text.trimmed();
        const qsizetype equals = text.indexOf('=');
        if (text.startsWith('[')) {
            is_general =
                text.left(text.indexOf(']')).mid(1).trimmed().compare("general", Qt::CaseInsensitive) == 0;
            line.is_heading = is_general;
        } else if (is_general && equals > 0 && !text.startsWith(';')) {
            line.key = QString::fromUtf8(QByteArray::fromPercentEncoding(text.left(equals).trimmed()));
        }
        lines += line;
    }
    return lines;
}

// Where a new key goes: in its place among the sorted ones.
qsizetype place_for(const QString& key, QList<ini_line>& lines) {
    qsizetype place = -1;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const ini_line& line = lines.at(i);
        if (!line.key.isEmpty() && line.key > key)
            return i;
        if (!line.key.isEmpty() || (line.is_heading && place < 0))
            place = i + 1;
    }
    if (place >= 0)
        return place;
    lines.prepend({"[General]\n", {}, true});
    return 1;
}

} // namespace

QHash<QString, QVariant> values_of_ini(const QByteArray& ini) {
    QHash<QString, QVariant> values;
    for (const ini_line& line : lines_of(ini)) {
        if (!line.key.isEmpty())
            values.insert(line.key, ini_value(line.text.sliced(line.text.indexOf('=') + 1)));
    }
    return values;
}

QByteArray with_changed_keys(const QByteArray& ini, const ini_changes& changes) {
    QList<ini_line> lines = lines_of(ini);
    for (auto change = changes.begin(); change != changes.end(); ++change) {
        const auto is_it = [&](const ini_line& line) { return line.key == change.key(); };
        const auto first = std::find_if(lines.begin(), lines.end(), is_it);
        qsizetype place = first == lines.end() ? -1 : first - lines.begin();
        lines.removeIf(is_it);
        if (!change.value())
            continue;
        if (place < 0)
            place = place_for(change.key(), lines);
        lines.insert(place,
                     {change.key().toUtf8() + '=' + as_ini_value(**change) + '\n', change.key(), false});
    }
    QByteArray text;
    for (const ini_line& line : lines)
        text += line.text;
    return text;
}

} // namespace brivant
