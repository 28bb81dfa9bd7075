#include "charts/sample_matrix.h"

#include "base/shared_types.h"

#include <algorithm>
#include <utility>

namespace brivant {

namespace {

constexpr qsizetype leaf_rows = 64;
constexpr qsizetype block_rows = sample_times::block_rows;
constexpr qsizetype leaves_per_block = block_rows / leaf_rows;
constexpr qsizetype most_odd_bytes = qsizetype{1} << 20;
constexpr qsizetype odd_overhead = 96; // a text's own share of the list and the table

// A body in one word. The top byte is the number of hexadecimal digits in the seven below it, or odd_mark
// with the place among the odd texts there; the word 0 is "-1".
constexpr quint64 missing = 0;
constexpr int digits_in_word = 14;
constexpr int top_byte = 56;
constexpr quint64 odd_mark = 0xFF;
constexpr quint64 none_word = odd_mark << top_byte; // "~"
constexpr quint64 below_top = (quint64{1} << top_byte) - 1;

const QString missing_text = QStringLiteral("-1");

char16_t code_of(QChar character) {
    return character.unicode();
}

char16_t code_of(char character) {
    return static_cast<unsigned char>(character);
}

// Capitals only, so that the text comes back as it was. 0 when the body is no such text.
template <typename body_text>
quint64 hexadecimal_word(const body_text& body) {
    if (body.isEmpty() || body.size() > digits_in_word)
        return 0;
    quint64 digits = 0;
    for (const auto character : body) {
        const char16_t code = code_of(character);
        if (code >= u'0' && code <= u'9')
            digits = digits << 4 | (code - u'0');
        else if (code >= u'A' && code <= u'F')
            digits = digits << 4 | (code - u'A' + 10u);
        else
            return 0;
    }
    return static_cast<quint64>(body.size()) << top_byte | digits;
}

} // namespace

// What a word's number is, kept for the words met last.
class sample_matrix::number_cache {
public:
    template <typename function>
    double number(quint64 word, function work_out) {
        entry& place = entries[(word ^ word >> 17) % entries.size()];
        if (!place.known || place.word != word)
            place = {word, work_out(), true};
        return place.value;
    }

private:
    struct entry {
        quint64 word = 0;
        double value = 0;
        bool known = false;
    };
    std::vector<entry> entries = std::vector<entry>(1 << 16);
};

// Column after column. A leaf and the whole hold the finished rows only.
struct sample_matrix::block {
    explicit block(int columns)
        : words(static_cast<size_t>(columns * block_rows), missing),
          values(words.size(), std::numeric_limits<double>::quiet_NaN()),
          leaves(static_cast<size_t>(columns * leaves_per_block)), whole(static_cast<size_t>(columns)) {}

    static size_t cell(qsizetype row, int column) {
        return static_cast<size_t>(column * block_rows + row % block_rows);
    }
    static size_t leaf(qsizetype row, int column) {
        return static_cast<size_t>(column * leaves_per_block + row % block_rows / leaf_rows);
    }

    std::vector<quint64> words;
    std::vector<double> values;
    std::vector<series_summary> leaves;
    std::vector<series_summary> whole;
};

sample_matrix::sample_matrix(value_function value_of_body, qsizetype most_bytes)
    : value_of(std::move(value_of_body)), limit(most_bytes) {}

sample_matrix::~sample_matrix() = default;

void sample_matrix::start(int columns) {
    column_count = std::max(columns, 0);
    row_count = dropped_rows = 0;
    empty_rows.clear();
    blocks.clear();
    numbers.reset();
    finished.assign(static_cast<size_t>(column_count), {});
    odd_bodies.clear();
    odd_body_at.clear();
    odd_bytes = 0;
    of_rows.clear();
    its_times.start(column_count);
    add_row();
}

void sample_matrix::add_row() {
    if (column_count == 0)
        return;
    if (row_count > 0)
        finish_row();
    if (row_count == static_cast<qsizetype>(blocks.size()) * block_rows) {
        make_room();
        blocks.push_back(std::make_unique<block>(column_count));
    }
    its_times.add_row();
    ++row_count;
}

void sample_matrix::make_room() {
    while (blocks.size() > 1 && bytes() + block_bytes() > limit) {
        blocks.erase(blocks.begin());
        its_times.drop_block();
        row_count -= block_rows;
        dropped_rows += block_rows;
    }
    empty_rows.erase(empty_rows.begin(),
                     std::lower_bound(empty_rows.begin(), empty_rows.end(), dropped_rows));
}

void sample_matrix::finish_row() {
    const qsizetype row = row_count - 1;
    block& rows_of_it = *blocks.back();
    bool is_gap = true;
    for (const int column : std::as_const(of_rows))
        rows_of_it.values[block::cell(row, column)] = number_in_row(row, column);
    for (int column = 0; column < column_count; ++column) {
        const quint64 word = rows_of_it.words[block::cell(row, column)];
        is_gap = is_gap && (word == missing || word == none_word);
        const double number = rows_of_it.values[block::cell(row, column)];
        rows_of_it.leaves[block::leaf(row, column)].append(number);
        rows_of_it.whole[static_cast<size_t>(column)].append(number);
        if (dropped_rows + row > 0)
            finished[static_cast<size_t>(column)].append(number);
    }
    if (is_gap)
        empty_rows.push_back(dropped_rows + row);
}

qsizetype sample_matrix::gaps(qsizetype begin, qsizetype end) const {
    const auto row = [this](qsizetype number) {
        return std::lower_bound(empty_rows.begin(), empty_rows.end(), dropped_rows + number);
    };
    return begin < end ? row(end) - row(begin) : 0;
}

void sample_matrix::set(int column, const QString& body) {
    if (!has(row_count - 1, column))
        return;
    quint64 word = missing;
    if (body != missing_text) {
        word = hexadecimal_word(body);
        if (word == 0)
            word = odd_word(body);
    }
    put(column, word, number_of(body));
    for (const int worked_out : std::as_const(of_rows))
        blocks.back()->values[block::cell(row_count - 1, worked_out)] =
            number_in_row(row_count - 1, worked_out);
}

void sample_matrix::work_out_of_rows(const QList<int>& columns, row_function of_row) {
    of_rows = columns;
    of_rows.removeIf([this](int column) { return column < 0 || column >= column_count; });
    row_value_of = std::move(of_row);
    if (!of_rows.isEmpty())
        units_changed();
}

double sample_matrix::number_in_row(qsizetype row, int column) const {
    QStringList bodies;
    for (int each = 0; each < column_count; ++each)
        bodies += body(row, each);
    const double number = row_value_of(bodies, column);
    return std::isfinite(number) ? number : std::numeric_limits<double>::quiet_NaN();
}

void sample_matrix::set_bytes(int column, QByteArrayView body) {
    if (!has(row_count - 1, column))
        return;
    const quint64 word = hexadecimal_word(body);
    if (word == 0)
        return set(column, QString::fromUtf8(body));
    if (!numbers)
        numbers = std::make_unique<number_cache>();
    put(column, word, numbers->number(word, [&] { return number_of(QString::fromLatin1(body)); }));
}

void sample_matrix::put(int column, quint64 word, double number) {
    const size_t cell = block::cell(row_count - 1, column);
    blocks.back()->words[cell] = word;
    blocks.back()->values[cell] = number;
}

void sample_matrix::units_changed() {
    numbers.reset();
    finished.assign(static_cast<size_t>(column_count), {});
    number_cache cache;
    for (int column = 0; column < column_count; ++column) {
        for (qsizetype row = 0; row < row_count; ++row) {
            block& rows_of_it = *blocks[static_cast<size_t>(row / block_rows)];
            if (row % block_rows == 0)
                rows_of_it.whole[static_cast<size_t>(column)] = {};
            if (row % leaf_rows == 0)
                rows_of_it.leaves[block::leaf(row, column)] = {};
            const size_t cell = block::cell(row, column);
            const quint64 word = rows_of_it.words[cell];
            const double number = of_rows.contains(column)
                                      ? number_in_row(row, column)
                                      : cache.number(word, [&] { return number_of(text_of(word)); });
            rows_of_it.values[cell] = number;
            if (row == row_count - 1)
                break;
            rows_of_it.whole[static_cast<size_t>(column)].append(number);
            rows_of_it.leaves[block::leaf(row, column)].append(number);
            if (dropped_rows + row > 0)
                finished[static_cast<size_t>(column)].append(number);
        }
    }
}

QString sample_matrix::body(qsizetype row, int column) const {
    return has(row, column) ? text_of(block_of(row).words[block::cell(row, column)]) : missing_text;
}

double sample_matrix::value(qsizetype row, int column) const {
    return has(row, column) ? block_of(row).values[block::cell(row, column)]
                            : std::numeric_limits<double>::quiet_NaN();
}

series_summary sample_matrix::summary(int column, qsizetype begin, qsizetype end) const {
    series_summary sum;
    if (column < 0 || column >= column_count)
        return sum;
    end = std::min(end, row_count);
    const qsizetype summarised = std::min(end, row_count - 1);
    for (qsizetype row = std::max<qsizetype>(begin, 0); row < end;) {
        const block& rows_of_it = block_of(row);
        if (row % block_rows == 0 && row + block_rows <= summarised) {
            sum.append(rows_of_it.whole[static_cast<size_t>(column)]);
            row += block_rows;
        } else if (row % leaf_rows == 0 && row + leaf_rows <= summarised) {
            sum.append(rows_of_it.leaves[block::leaf(row, column)]);
            row += leaf_rows;
        } else {
            sum.append(rows_of_it.values[block::cell(row, column)]);
            ++row;
        }
    }
    return sum;
}

series_summary sample_matrix::extremes(int column) const {
    if (column < 0 || column >= column_count)
        return {};
    series_summary sum = finished[static_cast<size_t>(column)];
    if (dropped_rows + row_count > 1)
        sum.append(value(row_count - 1, column));
    return sum;
}

series_summary sample_matrix::extremes_with_first(int column) const {
    series_summary sum = extremes(column);
    if (dropped_rows == 0)
        sum.append(value(0, column));
    return sum;
}

const sample_matrix::block& sample_matrix::block_of(qsizetype row) const {
    return *blocks[static_cast<size_t>(row / block_rows)];
}

qsizetype sample_matrix::bytes() const {
    return static_cast<qsizetype>(blocks.size()) * block_bytes() + odd_bytes;
}

qsizetype sample_matrix::block_bytes() const {
    constexpr size_t cell = sizeof(quint64) + sizeof(double);
    constexpr size_t summaries = sizeof(series_summary) * (leaves_per_block + 1);
    return column_count * static_cast<qsizetype>(block_rows * cell + summaries) +
           sample_times::block_bytes(column_count);
}

qsizetype sample_matrix::most_rows() const {
    return column_count == 0 ? 0
                             : std::max<qsizetype>(1, (limit - most_odd_bytes) / block_bytes()) * block_rows;
}

bool sample_matrix::has(qsizetype row, int column) const {
    return row >= 0 && row < row_count && column >= 0 && column < column_count;
}

quint64 sample_matrix::odd_word(const QString& body) {
    // The first of the odd texts is the one that stands for those without room.
    const auto place_of = [this](const QString& text) {
        const auto known = odd_body_at.constFind(text);
        if (known != odd_body_at.cend())
            return *known;
        const qsizetype size = text.size() * static_cast<qsizetype>(sizeof(QChar)) + odd_overhead;
        if (!odd_bodies.isEmpty() && odd_bytes + size > most_odd_bytes)
            return qsizetype{0};
        odd_bytes += size;
        odd_bodies.append(text);
        return *odd_body_at.insert(text, odd_bodies.size() - 1);
    };
    place_of(no_reply);
    return odd_mark << top_byte | static_cast<quint64>(place_of(body));
}

QString sample_matrix::text_of(quint64 word) const {
    if (word == missing)
        return missing_text;
    const quint64 low = word & below_top;
    if (word >> top_byte == odd_mark)
        return odd_bodies[static_cast<qsizetype>(low)];
    return QString::number(low, 16).toUpper().rightJustified(static_cast<qsizetype>(word >> top_byte), u'0');
}

double sample_matrix::number_of(const QString& body) const {
    if (body == missing_text || body == no_reply)
        return std::numeric_limits<double>::quiet_NaN();
    const double number = value_of(body);
    return std::isfinite(number) ? number : std::numeric_limits<double>::quiet_NaN();
}

} // namespace brivant
