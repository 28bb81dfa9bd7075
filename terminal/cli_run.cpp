#include "terminal/cli_run.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

// Why an operation failed may be told up to half a second after its end.
constexpr int last_words_ms = 700;

int signal_pipe[2] = {-1, -1};

void on_signal(int) {
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(signal_pipe[1], &byte, 1);
}

} // namespace

cli_run::cli_run(program_core& its_core, const cli_command& its_command)
    : core(its_core), command(its_command), view(core.options.yes),
      delegate(core.state, core.defaults, core.db, core.clock, view), toolies(core.state, core.defaults, core.db),
      controller(core.state, delegate, toolies, view, core.diagnostics) {}

cli_run::~cli_run() {
    delegate.applicationWillTerminate();
}

void cli_run::start() {
    stop_on_signal();
    core.choose_link();
    delegate.applicationDidFinishLaunching(nullptr);
    delegate.set_controller(&controller);
    controller.operation_ended = [this](bool done) {
        ending = core.clock.one_shot(done ? 0 : last_words_ms, [this, done] { print_result(done); });
    };
    command.start(controller);
}

// Ctrl-C and a polite kill leave the operation; what was read until then is not shown as a result.
void cli_run::stop_on_signal() {
    if (pipe2(signal_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    signals_ = std::make_unique<QSocketNotifier>(signal_pipe[0], QSocketNotifier::Read);
    connect(signals_.get(), &QSocketNotifier::activated, this, [this] {
        signals_->setEnabled(false);
        controller.stop();
    });
    struct sigaction action = {};
    action.sa_handler = on_signal;
    action.sa_flags = SA_RESTART | SA_RESETHAND; // a second Ctrl-C ends the program at once
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
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
