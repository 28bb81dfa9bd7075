#include "terminal/cli_run.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <cstdio>

namespace {

// Why an operation failed may be told up to half a second after its end.
constexpr int last_words_ms = 700;

} // namespace

cli_run::cli_run(program_core& its_core, const cli_command& its_command)
    : core(its_core), command(its_command), view(core.options.yes),
      delegate(core.state, core.defaults, core.db, core.clock, view),
      toolies(core.state, core.defaults, core.db),
      controller(core.state, delegate.link, toolies, view, core.diagnostics, core.paths) {}

cli_run::~cli_run() {
    delegate.applicationWillTerminate();
}

void cli_run::start() {
    // What was read until then is not shown as a result.
    signals_ = std::make_unique<stop_signals>([this] { controller.stop(); });
    core.choose_link();
    delegate.applicationDidFinishLaunching(nullptr);
    delegate.link.set_controller(&controller);
    controller.operation_ended = [this](bool done) {
        ending = core.clock.one_shot(done ? 0 : last_words_ms, [this, done] { print_result(done); });
    };
    command.start(controller);
}

void cli_run::print_result(bool done) {
    QByteArray result;
    if (core.options.json) {
        QJsonObject object = command.as_json(controller);
        object.insert(QStringLiteral("done"), done);
        object.insert(QStringLiteral("messages"), QJsonArray::fromStringList(view.messages()));
        result = QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
    } else if (done) {
        result = command.as_text(controller).toUtf8();
    }
    const bool written = std::fwrite(result.constData(), 1, static_cast<size_t>(result.size()), stdout) ==
                             static_cast<size_t>(result.size()) &&
                         std::fflush(stdout) == 0;
    Q_EMIT finished(done && written ? 0 : 1);
}
