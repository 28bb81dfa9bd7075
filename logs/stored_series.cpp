#include "logs/stored_series.h"

#include "base/string_table.h"

#include <algorithm>
#include <chrono>

namespace {

constexpr int data_column = 0;
constexpr int time_column = 1;
constexpr QByteArrayView answer = "41";
constexpr qsizetype pid_end = 4; // "41", then the PID

// The number in `digits` characters; -1 when one of them is none.
int number_at(QByteArrayView text, qsizetype at, qsizetype digits) {
    int number = 0;
    for (const char digit : text.sliced(at, digits)) {
        if (digit < '0' || digit > '9')
            return -1;
        number = number * 10 + (digit - '0');
    }
    return number;
}

bool is_hexadecimal(QByteArrayView text) {
    return std::all_of(text.begin(), text.end(), [](char digit) {
        return (digit >= '0' && digit <= '9') || (digit >= 'A' && digit <= 'F') ||
               (digit >= 'a' && digit <= 'f');
    });
}

} // namespace

qint64 seconds_of_time_stamp(QByteArrayView utc) {
    constexpr QByteArrayView form = "0000-00-00 00:00:00";
    if (utc.size() != form.size())
        return -1;
    const int year = number_at(utc, 0, 4);
    const int month = number_at(utc, 5, 2);
    const int day = number_at(utc, 8, 2);
    const int hour = number_at(utc, 11, 2);
    const int minute = number_at(utc, 14, 2);
    const int second = number_at(utc, 17, 2);
    if (std::min({year, month, day, hour, minute, second}) < 0)
        return -1;
    const std::chrono::year_month_day date{std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    if (!date.ok())
        return -1;
    return std::chrono::seconds(std::chrono::sys_days(date).time_since_epoch()).count() + hour * 3600 +
           minute * 60 + second;
}

stored_series::stored_series(database& store, const log_header& log, sample_matrix& into, qsizetype most_rows)
    : matrix(into), limit(most_rows), lines_announced(log.info.section(u' ', 0, 0).toLongLong()) {
    matrix.start(0);
    if (!store.init_DB()) {
        fail(store.problem());
        return;
    }
    lines_left = std::make_unique<row_cursor>(
        store.path(), fill(QStringLiteral("SELECT DATA, time_stamp FROM LOGGIES_DATA WHERE LOG_ID=%d"),
                           {QString::number(log.id)}));
    if (lines_left->has_failed())
        fail(lines_left->reason());
}

bool stored_series::fail(const QString& reason) {
    what_is_wrong = QStringLiteral("The log cannot be read: %1.").arg(reason);
    lines_left.reset();
    return false;
}

bool stored_series::step(int lines) {
    for (int i = 0; lines_left && i < lines; ++i) {
        if (!lines_left->advance()) {
            if (lines_left->has_failed())
                return fail(lines_left->reason());
            lines_left.reset();
        } else if (row_count >= limit || (row_count + 1) * matrix.columns() > most_cells) {
            cut = true;
            lines_left.reset();
        } else {
            begin_row(lines_left->bytes(data_column));
            row_times.push_back(seconds_of_time_stamp(lines_left->bytes(time_column)));
            take(lines_left->bytes(data_column));
        }
    }
    if (!lines_left)
        sums.count_rows(matrix);
    return lines_left != nullptr;
}

void stored_series::begin_row(QByteArrayView line) {
    if (row_count++ > 0) {
        sums.count_rows(matrix);
        return matrix.add_row();
    }
    const qsizetype items = std::count(line.begin(), line.end(), ',') + 1;
    const int columns = static_cast<int>(std::min(items, most_columns));
    column_pids = QStringList(columns);
    sums.start(columns);
    matrix.start(columns);
}

void stored_series::take(QByteArrayView line) {
    int column = 0;
    for (qsizetype from = 0; from <= line.size() && column < matrix.columns(); ++column) {
        const auto comma = std::find(line.begin() + from, line.end(), ',');
        const qsizetype to = comma - line.begin();
        take_cell(column, line.sliced(from, to - from).trimmed());
        from = to + 1;
    }
}

void stored_series::take_cell(int column, QByteArrayView item) {
    if (item.size() <= pid_end || !item.startsWith(answer))
        return;
    matrix.set_bytes(column, item);
    QString& pid = column_pids[column];
    const QByteArrayView told = item.sliced(answer.size(), pid_end - answer.size());
    if (pid.isEmpty() && is_hexadecimal(told))
        pid = QString::fromLatin1(told).toUpper();
}

void stored_series::count_again() {
    sums.start(matrix.columns());
    sums.count_rows(matrix);
}
