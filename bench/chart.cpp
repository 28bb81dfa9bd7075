// What the live-data pictures cost as a run grows: handling one reply (the sample into the matrix, labels,
// chart, thumbnail and gauge), and one frame of the large chart, at a thousand, a hundred thousand and a
// million sweeps of eight PIDs. Run a release build on an otherwise idle machine. With a folder as argument
// the pictures of the last round are left there.

#include "base/user_defaults.h"
#include "charts/drawChartyItem.h"
#include "charts/myGauge.h"
#include "persistence/database.h"
#include "toolkit/mac_toolies.h"

#include <QGuiApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <random>
#include <vector>

using namespace brivant;

namespace {

const QStringList pids{"0D", "0C", "11", "05", "0B", "10", "0E", "14"};
constexpr int rounds = 61;
constexpr double ms_of_reply = 30;
constexpr double screen_ratio = 1;
constexpr QSizeF chart_size(800, 440);
constexpr QSizeF thumbnail_size(180, 110);

// A drive with its noise: neighbours differ, so that every pixel column has something to draw.
class drive {
public:
    QString reply(const QString& pid, qsizetype sweep) {
        const double wave = 0.5 + 0.4 * std::sin(static_cast<double>(sweep) / 90 + pid.toInt(nullptr, 16));
        const double part = std::clamp(wave + noise(random), 0.0, 1.0);
        const bool has_two_bytes =
            pid == QLatin1String("0C") || pid == QLatin1String("10") || pid == QLatin1String("14");
        const int most = has_two_bytes ? 0x3FFF : 0xC0;
        return QStringLiteral("41%1%2")
            .arg(pid)
            .arg(static_cast<int>(part * most), has_two_bytes ? 4 : 2, 16, QChar(u'0'))
            .toUpper();
    }

private:
    std::mt19937 random{8};
    std::normal_distribution<double> noise{0, 0.04};
};

double begin_of(qsizetype sweep) {
    return ms_of_reply * static_cast<double>(pids.size() * sweep);
}

void sample(sample_matrix& matrix, drive& car, qsizetype sweep) {
    matrix.begins(begin_of(sweep));
    for (int column = 0; column < pids.size(); ++column) {
        matrix.came(column, begin_of(sweep) + ms_of_reply * (column + 1));
        matrix.set(column, car.reply(pids[column], sweep));
    }
}

struct run_pictures {
    drawChartyItem chart;
    drawChartyItem thumbnail;
    myGauge gauge;

    explicit run_pictures(const mac_toolies& toolies) : chart(toolies), thumbnail(toolies), gauge(toolies) {
        chart.initWitdim(chart_size, "chart", screen_ratio);
        chart.use_this_pids(pids);
        chart.map_time(true);
        thumbnail.initWitdim(thumbnail_size, "thumbnail", screen_ratio);
        thumbnail.setThumbnail(true);
        thumbnail.use_this_pids(pids);
        thumbnail.map_time(true);
        gauge.initGauge(pids.first());
    }
};

void draw(drawChartyItem& item, const sample_matrix& matrix) {
    const chart_labels labels = item.work_out_labels(matrix);
    item.draw_grid(labels, QStringLiteral("All sampling points"));
    item.plot_array_list(matrix, labels);
}

// Of this thread, so that what else the machine does counts less.
double processor_milliseconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

// Milliseconds, the median over the rounds.
template <typename function>
double median(function work, int times_over = rounds) {
    std::vector<double> times;
    for (int round = 0; round < times_over; ++round) {
        const double start = processor_milliseconds();
        work();
        times.push_back(processor_milliseconds() - start);
    }
    std::nth_element(times.begin(), times.begin() + times_over / 2, times.end());
    return times[static_cast<size_t>(times_over / 2)];
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QTemporaryDir folder;
    const adapter_facts adapter{};
    const car_state no_car{};
    user_defaults defaults(folder.filePath("settings.ini"));
    database db(folder.path());
    mac_toolies toolies(adapter, no_car, defaults, db);
    drive car;

    std::printf("%10s %14s %14s %14s %14s %12s\n", "sweeps", "reply ms", "chart ms", "group of 4 ms",
                "last 20 ms", "matrix MB");
    double first_reply = 0, first_chart = 0, last_reply = 0, last_chart = 0;
    for (const qsizetype sweeps : {1000, 100000, 1000000}) {
        sample_matrix matrix([&toolies](const QString& body) { return toolies.get_OBDVal(body); });
        matrix.start(static_cast<int>(pids.size()));
        for (qsizetype sweep = 0; sweep < sweeps; ++sweep) {
            sample(matrix, car, sweep);
            matrix.add_row();
        }
        run_pictures pictures(toolies);
        qsizetype sweep = sweeps;
        const double reply = median([&] {
            const QString body = car.reply(pids.first(), ++sweep);
            matrix.begins(begin_of(sweep));
            matrix.came(0, begin_of(sweep) + ms_of_reply);
            matrix.set(0, body);
            draw(pictures.thumbnail, matrix);
            draw(pictures.chart, matrix);
            pictures.gauge.draw_cur_needle_value(toolies.get_OBDVal(body));
            matrix.add_row();
        });
        const double chart = median([&] { draw(pictures.chart, matrix); });
        if (argc > 1)
            pictures.chart.imageRepresentation().save(
                QStringLiteral("%1/chart_%2.png").arg(argv[1]).arg(sweeps));
        pictures.chart.updateNoOfPlots({0, 1, 2, 3});
        const double group = median([&] { draw(pictures.chart, matrix); });
        pictures.chart.updateNoOfPlots({});
        pictures.chart.setNumberPointsToPlot(20);
        const double last_20 = median([&] { draw(pictures.chart, matrix); });
        std::printf("%10lld %14.3f %14.3f %14.3f %14.3f %12.1f\n", static_cast<long long>(sweeps), reply,
                    chart, group, last_20, static_cast<double>(matrix.bytes()) / 1e6);
        first_reply = first_reply == 0 ? reply : first_reply;
        first_chart = first_chart == 0 ? chart : first_chart;
        last_reply = reply;
        last_chart = chart;
        if (sweeps == 1000000)
            std::printf("%10s %14.1f ms\n", "new units", median([&] { matrix.units_changed(); }, 3));
    }
    std::printf("the last beside the first: reply %.2f times, chart %.2f times (medians of %d rounds)\n",
                last_reply / first_reply, last_chart / first_chart, rounds);
    return 0;
}
