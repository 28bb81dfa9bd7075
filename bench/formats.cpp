// What a run of 100,000 sweeps of four columns takes in each log format: bytes, and the processor time of
// writing it; for timed CSV also that of reading it back with its drive figures (the first time with what Qt
// loads for dates). Beside it a tenth of the run: a sweep must cost the
// same.

#include "formats/drive_figures.h"
#include "formats/run_writer.h"
#include "formats/timed_csv_reader.h"

#include <QFile>
#include <QTemporaryDir>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>

using namespace brivant;

namespace {

[[noreturn]] void give_up(const QString& what) {
    std::fprintf(stderr, "%s\n", qPrintable(what));
    std::exit(1);
}

double processor_seconds() {
    return double(std::clock()) / CLOCKS_PER_SEC;
}

run_head four_columns() {
    run_head head;
    head.start_ms = 1'367'417'047'123;
    head.vehicle = QStringLiteral("Golf");
    head.version = QStringLiteral("0.1.0");
    head.columns = {
        {QStringLiteral("0D"), QStringLiteral("Vehicle speed"), QStringLiteral("kph")},
        {QStringLiteral("11"), QStringLiteral("Throttle position"), QStringLiteral("%")},
        {QStringLiteral("0C"), QStringLiteral("Engine RPM"), QStringLiteral("RPM")},
        {QStringLiteral("05"), QStringLiteral("Engine coolant temperature"), QStringLiteral("C")}};
    head.has_offsets = true;
    head.has_positions = true;
    return head;
}

timed_sweep sweep_of(int number) {
    const double wave = std::sin(number / 300.0);
    timed_sweep sweep{
        number * 143.217,
        {std::round(60 + 60 * wave), number % 256 * 100 / 255.0, 800.25 + number % 4000 / 4.0, 83.0},
        {17.313, 52.871, 88.112, 123.904},
        {}};
    if (number % 7 == 0)
        sweep.position = geo_position{52.5 + wave / 10, 13.25, 34.5, 16.6};
    return sweep;
}

void write(const run_format& format, QFile& file, int sweeps) {
    const auto writer = make_run_writer(format.what, file);
    writer->begin(four_columns());
    for (int i = 0; i < sweeps; ++i)
        writer->add(sweep_of(i));
    if (!writer->end() || !file.flush())
        give_up(writer->problem() + file.errorString());
}

void read(QFile& file, int sweeps) {
    timed_csv_reader reader(file);
    if (!reader.read_head())
        give_up(reader.problem());
    drive_figures figures(reader.head());
    int found = 0;
    while (const auto item = reader.next()) {
        figures.add(std::get<timed_sweep>(*item));
        ++found;
    }
    if (found != sweeps || figures.distance_km() <= 0)
        give_up(reader.problem());
}

} // namespace

int main() {
    const QTemporaryDir folder;
    std::printf("format   sweeps     bytes  a sweep        s  us a sweep\n");
    for (const run_format& format : run_formats())
        for (const int sweeps : {10'000, 100'000}) {
            QFile file(
                folder.filePath(QString::number(sweeps) + QLatin1Char('.') + QLatin1String(format.suffix)));
            if (!file.open(QIODevice::ReadWrite))
                give_up(file.errorString());
            const auto told = [&](const char* what, double before) {
                const double taken = processor_seconds() - before;
                std::printf("%-6s %8d %9lld %8.1f %8.3f %11.2f\n", what, sweeps, (long long)file.size(),
                            double(file.size()) / sweeps, taken, taken / sweeps * 1e6);
            };
            double before = processor_seconds();
            write(format, file, sweeps);
            told(format.word, before);
            if (format.what != run_format::kind::timed_csv)
                continue;
            file.seek(0);
            before = processor_seconds();
            read(file, sweeps);
            told("read", before);
        }
}
