// How many commands a second go to an adapter and come back as a value: through the transport, the exchange,
// the reply check, a controller's step and the translation, with the diagnostic log on. Beside it a bare
// socket that sends the same command as soon as the prompt is there: what adapter, network and event loop
// allow. Both talk to the same virtual adapter and take turns. Run a release build on an otherwise idle
// machine.

#include "base/console_log.h"
#include "bench/bare_socket.h"
#include "diagnostics/readCodes.h"
#include "shell/program_core.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <vector>

using namespace brivant;

namespace {

const QByteArray asked_for = "01 0C\r";

// What a live run does with each reply, without a matrix to put the value in.
class sampler : public task_controller {
public:
    sampler(adapter_link& its_link, const mac_toolies& its_toolies) : link(its_link), toolies(its_toolies) {}

    double run() {
        return counter.run([this] { send(); });
    }
    const QString& last_value() const { return value; }

    void work_current_task(const QString&) override { give_up(QStringLiteral("a command timed out")); }
    void handleOBDRcvdMsg(const reply& what_came) override {
        if (!what_came.engine())
            give_up(QStringLiteral("no value in \"%1\"").arg(what_came.text()));
        value = toolies.translateResponse(what_came.engine()->value_of_first_line());
        if (counter.next())
            send();
    }
    void leave_cur_op_gracefully(const QString&) override {}
    void handle_link_loss(const link_lost&) override { give_up(QStringLiteral("the link was lost")); }
    void set_status_msg(const QString& status) override { give_up(status); }
    void handleOBDToast(const QString&) override {}

private:
    void send() { link.sendOBDcmd_n(QString::fromLatin1(asked_for), QString(), true); }

    adapter_link& link;
    const mac_toolies& toolies;
    round_counter counter;
    QString value;
};

// Through the program's own initialisation: echo off, headers on, the protocol and the supported PIDs known.
void initialise(adapter_link& link, readCodes& controller) {
    QEventLoop loop;
    link.set_controller(&controller);
    controller.operation_ended = [&loop](bool done) {
        if (!done)
            give_up(QStringLiteral("the adapter could not be initialised"));
        loop.quit();
    };
    controller.read_link_info();
    loop.exec();
    controller.operation_ended = nullptr;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QTemporaryDir profile;
    QProcess adapter;
    const quint16 port = start_adapter(adapter);
    program_core core(options_for(port, profile.path()));
    core.choose_link();
    redirect_console_log(core.paths.documents + QStringLiteral("/console.log"));

    quiet_screen view;
    adapter_link link(core.place, core.adapter, core.clock, view, make_transport);
    core.db.init_DB();
    readCodes controller(core.car, link, core.toolies, view, core.diagnostics, core.paths);
    initialise(link, controller);

    sampler program(link, core.toolies);
    link.set_controller(&program);
    bare_socket bare(port, {asked_for});
    std::vector<double> with_program, without, ratios;
    program.run(), bare.run(); // warm
    for (int i = 0; i < rounds; ++i) {
        with_program.push_back(program.run());
        without.push_back(bare.run());
        ratios.push_back(with_program.back() / without.back());
    }
    link.set_controller(nullptr);
    link.disconnect();
    adapter.kill();
    adapter.waitForFinished();

    std::printf("command to value       %8.0f a second (last: %s)\n", median(with_program),
                qPrintable(program.last_value()));
    std::printf("bare socket            %8.0f a second\n", median(without));
    std::printf("ratio, pair by pair    %8.2f (median of %d)\n", median(ratios), rounds);
    return 0;
}
