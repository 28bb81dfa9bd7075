#include "formats/export_columns.h"
#include "formats/export_text.h"
#include "formats/run_writers.h"

#include <QDateTime>
#include <QLocale>

namespace brivant {

namespace {

QString title_line(QString text) {
    return u'"' + text.simplified().replace(u'"', u'\'') + QStringLiteral("\"\r\n");
}

// The text log that MegaLogViewer reads: title lines in quotes, a row of names that begins with "Time", a row
// of units, rows of numbers, all tab-separated, and between them the marks as lines of their own. A gap is
// "NaN": of readers that split at tabs some run empty cells together.
class msl_writer : public run_writer {
public:
    explicit msl_writer(QIODevice& out) : run_writer(out) {}

private:
    void write_head() override;
    void write_sweep(const timed_sweep& sweep) override;
    void write_mark(const timed_mark& its_mark) override;

    QList<export_column> columns;
    int marks = 0;
};

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

} // namespace

std::unique_ptr<run_writer> make_msl_writer(QIODevice& out) {
    return std::make_unique<msl_writer>(out);
}

} // namespace brivant
