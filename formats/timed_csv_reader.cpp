#include "formats/timed_csv_reader.h"

#include "formats/timed_csv_head.h"

#include <QStringDecoder>
#include <cmath>

namespace brivant {

namespace {

constexpr double latest_possible = 1e12; // ms: thirty years

std::optional<QString> text_of(const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(text);
}

} // namespace

bool timed_csv_reader::read_head() {
    if (!read_row()) {
        if (what_is_wrong.isEmpty())
            what_is_wrong = QStringLiteral("The file is empty.");
        return false;
    }
    if (cells.first().startsWith("\xEF\xBB\xBF")) // a spreadsheet's byte order mark
        cells.first().remove(0, 3);
    QStringList names;
    for (const QByteArray& cell : std::as_const(cells)) {
        const auto name = text_of(cell);
        if (!name)
            return fail(QStringLiteral("it is not text in UTF-8"));
        names += *name;
    }
    QString reason;
    const auto told = head_of_timed_csv(names.last(), reason);
    if (!told)
        return fail(reason);
    if (told->columns.size() > most_columns)
        return fail(QStringLiteral("it has more than %1 columns of values").arg(most_columns));
    const QStringList expected = timed_csv_names(*told);
    for (qsizetype i = 0; i + 1 < expected.size(); ++i)
        if (names.value(i) != expected[i])
            return fail(QStringLiteral("column %1 must be \"%2\"").arg(QString::number(i + 1), expected[i]));
    if (names.size() != expected.size())
        return fail(QStringLiteral("it has %1 columns instead of %2").arg(names.size()).arg(expected.size()));
    run = *told;
    columns = export_columns(run);
    return true;
}

std::optional<timed_csv_reader::item> timed_csv_reader::next() {
    if (marked_by_hand)
        return item(*std::exchange(marked_by_hand, std::nullopt));
    if (columns.isEmpty() || !what_is_wrong.isEmpty() || !read_row())
        return std::nullopt;
    return item_of_row();
}

// The next row that is not empty into the cells. False at the end, and when it cannot be read.
bool timed_csv_reader::read_row() {
    QByteArray row;
    do {
        row = device.readLine(longest_line + 1);
        if (row.isEmpty()) {
            if (!device.atEnd())
                fail(QStringLiteral("it cannot be read (%1)").arg(device.errorString()));
            return false;
        }
        if (++line > most_rows)
            return fail(QStringLiteral("it has more than %1 lines").arg(most_rows));
        if (row.size() >= longest_line && !row.endsWith('\n'))
            return fail(QStringLiteral("it is longer than %1 bytes").arg(longest_line));
        if (row.contains('\0'))
            return fail(QStringLiteral("it holds a byte 00, which no text has"));
        if (row.endsWith('\n'))
            row.chop(1);
        if (row.endsWith('\r'))
            row.chop(1);
    } while (row.isEmpty());
    return split(row);
}

// By RFC 4180, but for line breaks within quotes, which this program never writes.
bool timed_csv_reader::split(const QByteArray& row) {
    enum class place { begin, plain, quoted, behind_quote } at = place::begin;
    cells.clear();
    QByteArray cell;
    for (const char c : row) {
        if (c == '"' && at != place::plain) {
            if (at == place::behind_quote)
                cell += c;
            at = at == place::quoted ? place::behind_quote : place::quoted;
        } else if (c == ',' && at != place::quoted) {
            cells += std::exchange(cell, QByteArray());
            at = place::begin;
            if (cells.size() > 2 * most_columns + 8)
                return fail(QStringLiteral("it has too many columns"));
        } else if (at == place::behind_quote) {
            return fail(
                QStringLiteral("something follows the quote that ends cell %1").arg(cells.size() + 1));
        } else {
            cell += c;
            at = at == place::begin ? place::plain : at;
        }
    }
    if (at == place::quoted)
        return fail(QStringLiteral("the quote that begins cell %1 does not end").arg(cells.size() + 1));
    cells += cell;
    return true;
}

std::optional<double> timed_csv_reader::number_in(qsizetype cell) {
    if (cells[cell].isEmpty())
        return std::nullopt;
    bool is_number = false;
    const double number = cells[cell].toDouble(&is_number);
    if (is_number && std::isfinite(number))
        return number;
    fail(QStringLiteral("cell %1 holds \"%2\" instead of a number")
             .arg(QString::number(cell + 1), QString::fromLatin1(cells[cell].left(40))));
    return std::nullopt;
}

std::optional<timed_csv_reader::item> timed_csv_reader::item_of_row() {
    const qsizetype mark_cell = columns.size() + 1;
    if (cells.size() != mark_cell + 2) {
        fail(QStringLiteral("it has %1 cells instead of %2").arg(cells.size()).arg(mark_cell + 2));
        return std::nullopt;
    }
    timed_sweep sweep{time_of_row(), std::vector<std::optional<double>>(run.columns.size()), {}, {}};
    const bool has_numbers = fill(sweep);
    const auto word = text_of(cells[mark_cell]);
    if (!word)
        fail(QStringLiteral("its mark is not text in UTF-8"));
    if (!what_is_wrong.isEmpty())
        return std::nullopt;
    if (!word->isEmpty() && !has_numbers)
        return item(timed_mark{sweep.ms, *word});
    if (!word->isEmpty())
        marked_by_hand = timed_mark{sweep.ms, *word};
    return item(sweep);
}

// In milliseconds. The file has whole microseconds: rounded to them, the same number comes out as went in.
double timed_csv_reader::time_of_row() {
    const double ms = std::round(number_in(0).value_or(NAN) * 1e6) / 1e3;
    if (!(std::fabs(ms) < latest_possible))
        fail(QStringLiteral("it does not begin with its time in seconds"));
    if (has_begun && ms < latest_ms)
        fail(QStringLiteral("its time lies before that of the line before"));
    latest_ms = ms;
    has_begun = true;
    return ms;
}

// True when the row has a number behind its time.
bool timed_csv_reader::fill(timed_sweep& sweep) {
    using kind = export_column::kind;
    geo_position position{NAN, NAN};
    bool has_numbers = false;
    bool has_offsets = false;
    for (qsizetype i = 0; i < columns.size() && what_is_wrong.isEmpty(); ++i) {
        const auto number = number_in(i + 1);
        has_numbers |= number.has_value();
        has_offsets |= number && columns[i].what == kind::offset;
        switch (columns[i].what) {
        case kind::value: sweep.values[columns[i].of] = number; break;
        case kind::offset: sweep.offsets_ms.push_back(number.value_or(NAN)); break;
        case kind::latitude: position.latitude = number.value_or(NAN); break;
        case kind::longitude: position.longitude = number.value_or(NAN); break;
        case kind::altitude: position.altitude = number; break;
        case kind::speed: position.speed = number; break;
        case kind::track: position.track = number; break;
        case kind::error: position.error = number; break;
        case kind::position_offset: position.offset_ms = number.value_or(0); break;
        }
    }
    if (!has_offsets)
        sweep.offsets_ms.clear();
    if (std::fabs(position.latitude) > 90 || std::fabs(position.longitude) > 180)
        fail(QStringLiteral("its position is not on the earth"));
    if (std::fabs(position.offset_ms) > latest_possible)
        fail(QStringLiteral("its position is of another time"));
    if (!std::isnan(position.latitude) && !std::isnan(position.longitude))
        sweep.position = position;
    return has_numbers;
}

bool timed_csv_reader::fail(const QString& reason) {
    if (what_is_wrong.isEmpty())
        what_is_wrong = QStringLiteral("Line %1: %2.").arg(QString::number(line), reason);
    return false;
}

} // namespace brivant
