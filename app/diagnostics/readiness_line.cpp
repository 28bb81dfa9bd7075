#include "app/diagnostics/readiness_line.h"

#include "diagnostics/permanent_codes.h"

namespace brivant {

namespace {

enum class monitor_state { complete, not_complete, absent };

monitor_state state_of(const readiness_row& row) {
    if (row.state == QLatin1String("OK"))
        return monitor_state::complete;
    return row.state == QLatin1String("X") ? monitor_state::not_complete : monitor_state::absent;
}

QString words_of(const readiness_row& row) {
    switch (state_of(row)) {
    case monitor_state::complete: return QStringLiteral("complete");
    case monitor_state::not_complete: return QStringLiteral("not complete");
    default:
        return row.group == drive_cycle_group ? QStringLiteral("not enabled in this drive cycle")
                                              : QStringLiteral("not supported");
    }
}

// Kept on one line, also behind a stroke.
QString unbroken(const QString& text) {
    return text.toHtmlEscaped()
        .replace(u' ', QStringLiteral("&nbsp;"))
        .replace(u'/', QStringLiteral("/\u2060"));
}

QString coloured(const QColor& colour, const QString& html) {
    return QStringLiteral("<span style=\"color:%1\">%2</span>").arg(colour.name(), html);
}

QString shown(const readiness_row& row, const theme& look) {
    const QString name = unbroken(row.label.trimmed());
    switch (state_of(row)) {
    case monitor_state::complete: return coloured(look.green, QStringLiteral("\u2713&nbsp;")) + name;
    case monitor_state::not_complete:
        return coloured(look.amber,
                        QStringLiteral("\u25CB&nbsp;%1:&nbsp;<b>not&nbsp;complete</b>").arg(name));
    default: return coloured(look.muted, QStringLiteral("\u2212&nbsp;") + name);
    }
}

} // namespace

// Of this drive cycle only what the car has still to check: the rest says nothing new.
QString readiness_line(const QList<readiness_row>& monitors, const theme& look) {
    const QString gap = QStringLiteral(" &nbsp;&nbsp; ");
    QString line;
    QString group;
    for (const readiness_row& row : monitors) {
        if (row.group == drive_cycle_group && state_of(row) != monitor_state::not_complete)
            continue;
        if (row.group != group) {
            group = row.group;
            line += line.isEmpty() ? QString() : group == drive_cycle_group ? QStringLiteral("<br>") : gap;
            line += coloured(look.muted, QStringLiteral("<b>%1</b>").arg(unbroken(group)));
        }
        line += gap + shown(row, look);
    }
    return line;
}

QString readiness_words(const QList<readiness_row>& monitors) {
    QStringList all;
    for (const readiness_row& row : monitors)
        all += QStringLiteral("%1: %2").arg(row.label.trimmed(), words_of(row));
    return all.join(QStringLiteral(", "));
}

} // namespace brivant
