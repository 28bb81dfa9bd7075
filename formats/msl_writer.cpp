#include "formats/msl_writer.h"

#include "formats/export_text.h"

#include <QDateTime>
#include <QLocale>

namespace brivant {

namespace {

QString title_line(QString text) {
    return u'"' + text.simplified().replace(u'"', u'\'') + QStringLiteral("\"\r\n");
}

} // namespace

void msl_writer::write_head() {
    columns = export_columns(head());
    const QDateTime start = QDateTime::fromMSecsSinceEpoch(head().start_ms, Qt::UTC);
    QString names = QStringLiteral("Time");
    QString units = QStringLiteral("s");
    for (const export_column& column : columns) {
        names += u'\t' + column.name.simplified();
        units += u'\t' + column.unit.simplified();
    }
    put((title_line(about_run(head()).join(QStringLiteral("; "))) +
         title_line(QStringLiteral("Capture Date: ") +
                    QLocale::c().toString(start, QStringLiteral("ddd MMM dd HH:mm:ss 'UTC' yyyy"))) +
         names + QStringLiteral("\r\n") + units + QStringLiteral("\r\n"))
            .toUtf8());
}

void msl_writer::write_sweep(const timed_sweep& sweep) {
    QByteArray line = seconds_text(sweep.ms);
    for (const export_column& column : columns) {
        const auto number = cell_of(sweep, column);
        line += '\t' + (number ? number_text(*number) : QByteArrayLiteral("NaN"));
    }
    put(line + "\r\n");
}

void msl_writer::write_mark(const timed_mark& its_mark) {
    const QString number = QStringLiteral("%1").arg(++marks, 3, 10, QLatin1Char('0'));
    put(QStringLiteral("MARK %1 - %2\r\n").arg(number, its_mark.text).toUtf8());
}

} // namespace brivant
