#include "terminal/live_run.h"

#include "livedata/fast_gain.h"
#include "terminal/output.h"

#include <QDateTime>
#include <csignal>

namespace brivant {

namespace {

constexpr qsizetype matrix_bytes = 1; // the latest sweeps only

QByteArray quoted(QString text) {
    return '"' + text.replace(u'"', QLatin1String("\"\"")).toUtf8() + '"';
}

QString now_text() {
    return QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
}

QString number_text(double value) {
    return std::isfinite(value) ? QString::number(value, 'g', 10) : QString();
}

// The number that the row's text shows; for the program's own fuel economy another than the one in the chart.
double number_of(const sample_row& row, bool by_standard) {
    return !by_standard && row.pid == QLatin1String("E4") && row.value != no_reply ? row.value.toDouble()
                                                                                   : row.latest;
}

QString label_of(const sample_row& row) {
    const QString name = row.pid + u' ' + row.name;
    return row.units == not_available ? name : QStringLiteral("%1 (%2)").arg(name, row.units.trimmed());
}

} // namespace

live_run::live_run(program_core& its_core, const live_words& its_words)
    : car_run(its_core), words(its_words),
      results([this](const QString& body) { return core.toolies.shown_number(body); }, matrix_bytes) {
    view.shows_every_reply = false;
    if (words.store)
        core.defaults.override_for_this_run(setting::log_runs, true);
    if (words.speed > 0)
        core.defaults.override_for_this_run(setting::sampling_speed, words.speed);
    if (const run_format* format = run_format_of(core.options.format))
        recorder = std::make_unique<run_recorder>(*format, core, results);
    std::signal(SIGPIPE, SIG_IGN); // a reader that goes away ends the run in order
}

void live_run::start() {
    on_stop([this] {
        as_asked = words.sweeps < 0 && words.seconds < 0; // else it has an end of its own
        controller->stop();
    });
    begin();
    controller = std::make_unique<actions>(core.car, delegate.link, core.toolies, view, core.defaults,
                                           core.clock, results, core.paths);
    controller->set_observer(this);
    controller->locate_by(&core.position);
    delegate.link.set_controller(controller.get());
    if (words.rate)
        controller->set_sample_rate(*words.rate);
    if (words.trigger)
        controller->store_when(*words.trigger);
    if (!words.pids.isEmpty())
        controller->use_pids(words.pids);
    controller->comboBoxSelectionDidChange(words.mode);
    if (!controller->is_running())
        controller->runLogs();
}

void live_run::stop(bool it_was_asked) {
    as_asked = it_was_asked;
    if (controller->is_running())
        controller->runLogs();
}

// --- what the run tells --------------------------------------------------------------------------------

void live_run::sample_arrived(int index) {
    if (seen.empty()) {
        seen.resize(static_cast<size_t>(results.these_samples.size()));
        marks.listen(); // there are no questions any more
        if (words.seconds > 0)
            time_limit = core.clock.one_shot(words.seconds * 1000, [this] { stop(true); });
    }
    const sample_row& row = results.these_samples.at(index);
    seen_column& column = seen[static_cast<size_t>(index)];
    column.answered |= row.value != no_reply;
    if (const double value = number_of(row, results.by_standard); std::isfinite(value))
        column.numbers.append(value);
}

void live_run::sweep_completed() {
    if ((recorder || results.log_sample_cnt > 0) && !std::exchange(position_told, true))
        tell(controller->about_positions() + u'\n');
    if (!core.options.json && !recorder && results.sample_cnt == 1)
        print(header());
    if (!print_row(false))
        stop(false);
    else if (results.sample_cnt == words.sweeps)
        stop(true);
}

void live_run::gap_begun() {
    if (results.sample_cnt > 0)
        print_row(true);
}

bool live_run::print_row(bool is_gap) {
    if (recorder)
        return recorder->take_row();
    print(core.options.json ? json_line(is_gap) : csv_line());
    return is_all_printed();
}

// A run without an end of its own waits for the car.
void live_run::car_gone() {
    if (words.sweeps > 0)
        stop(false);
}

void live_run::run_ended() {
    time_limit.reset();
    gain = fast_gain_sentence(*controller);
    ended_in_gap = words.seconds > 0 && controller->is_without_values();
    const auto words_then_end = [this] { after_last_words(as_asked, [this] { end(); }); };
    if (!controller->will_put_back())
        return words_then_end();
    controller->operation_ended = [words_then_end](bool) { words_then_end(); };
}

void live_run::end() {
    const bool is_written = !recorder || recorder->end();
    if (!is_written)
        tell(recorder->problem() + u'\n');
    const bool done = as_asked && !ended_in_gap && results.sample_cnt > 0 && is_written && is_all_printed() &&
                      controller->storing_problem().isEmpty() && every_asked_pid_answered();
    tell(summary());
    Q_EMIT finished(done ? 0 : 1);
}

bool live_run::every_asked_pid_answered() const {
    const auto has_value = [](const seen_column& column) { return column.answered; };
    if (!words.pids.isEmpty())
        return std::all_of(seen.begin(), seen.end(), has_value);
    const bool is_computed = !seen.empty() && results.these_samples.first().pid.startsWith(u'E');
    // What the mode is for comes first.
    return std::any_of(seen.begin(), is_computed ? seen.begin() + 1 : seen.end(), has_value);
}

// --- output --------------------------------------------------------------------------------------------

QByteArray live_run::header() const {
    QByteArray line = "time";
    const bool by_standard = core.toolies.standard_reading();
    for (const sample_row& row : results.these_samples) {
        const bool is_computed = row.pid.startsWith(u'E');
        line += ',' + quoted(label_of(row) +
                             (by_standard && !is_computed ? QStringLiteral(", SAE J1979") : QString()));
    }
    return line + '\n';
}

QByteArray live_run::csv_line() const {
    QByteArray line = now_text().toLatin1();
    for (int column = 0; column < results.these_samples.size(); ++column) {
        line += ',';
        if (results.was_asked(column))
            line += number_text(number_of(results.these_samples.at(column), results.by_standard)).toLatin1();
    }
    return line + '\n';
}

QByteArray live_run::json_line(bool is_gap) const {
    const bool by_standard = core.toolies.standard_reading();
    QJsonObject values;
    for (int column = 0; column < results.these_samples.size(); ++column) {
        if (!results.was_asked(column))
            continue;
        const sample_row& row = results.these_samples.at(column);
        const double number = number_of(row, results.by_standard);
        const bool answered = row.value != no_reply;
        QJsonObject value{{"value", std::isfinite(number) ? QJsonValue(number) : QJsonValue()},
                          {"text", answered ? QJsonValue(row.value.simplified()) : QJsonValue()},
                          {"name", row.name},
                          {"unit", row.units.trimmed()}};
        if (!row.other_value.isEmpty())
            value.insert(by_standard ? "program" : "standard", row.other_value.simplified());
        values.insert(row.pid, value);
    }
    QJsonObject sweep{{"time", now_text()},
                      {"sweep", results.sample_cnt},
                      {"reading", by_standard ? "standard" : "program"},
                      {"values", values}};
    if (is_gap)
        sweep.insert("gap", true);
    return compact(sweep) + '\n';
}

QString live_run::summary() const {
    const double seconds = static_cast<double>(results.times.duration_ms()) / 1000;
    QString text = QStringLiteral("%1 %2 in %3 s")
                       .arg(results.sample_cnt)
                       .arg(results.sample_cnt == 1 ? QStringLiteral("sweep") : QStringLiteral("sweeps"))
                       .arg(seconds, 0, 'f', 1);
    if (const double a_second = results.times.values_a_second(); a_second > 0)
        text += QStringLiteral(" (%1 values/s)").arg(a_second, 0, 'f', a_second < 100 ? 1 : 0);
    if (results.log_sample_cnt > 0)
        text +=
            QStringLiteral(", %1 of them stored as log %2").arg(results.log_sample_cnt).arg(results.log_id);
    else if (words.trigger)
        text += QStringLiteral(", none stored: %1 did not come true").arg(text_of(words.trigger->when));
    if (controller->sweeps_lost() > 0)
        text += QStringLiteral("\n%1").arg(controller->storing_problem());
    text += u'\n';
    for (qsizetype i = 0; i < results.these_samples.size() && i < static_cast<qsizetype>(seen.size()); ++i) {
        const auto& [numbers, answered] = seen[static_cast<size_t>(i)];
        const QString range =
            !numbers.empty()
                ? QStringLiteral("%1 to %2").arg(number_text(numbers.minimum), number_text(numbers.maximum))
            : answered ? QStringLiteral("no number")
                       : QStringLiteral("no value came");
        text += QStringLiteral("  %1: %2\n").arg(label_of(results.these_samples.at(i)), range);
    }
    if (!gain.isEmpty())
        text += gain + QStringLiteral(": --fast\n");
    return text;
}

} // namespace brivant
