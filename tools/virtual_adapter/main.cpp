#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/ceiling.h"
#include "tools/virtual_adapter/command_line.h"
#include "tools/virtual_adapter/pty_adapter.h"
#include "tools/virtual_adapter/virtual_adapter_server.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

namespace {

enum exit_code { exit_failed = 1, exit_usage = 2 };
constexpr int unplugged_ms = 1000;

void print(std::FILE* to, const QString& text) {
    std::fputs(qPrintable(text + QLatin1Char('\n')), to);
    std::fflush(to);
}

// Returns and prompts as they look on paper.
QString readable(const std::string& text) {
    return QString::fromLatin1(text.data(), qsizetype(text.size()))
        .replace(QLatin1Char('\r'), QStringLiteral("\\r"))
        .replace(QLatin1Char('\n'), QStringLiteral("\\n"));
}

template <typename Adapter>
void set_up(Adapter& adapter, const virtual_adapter::wishes& wish) {
    adapter.set_options(wish.options);
    adapter.set_faults(wish.what);
    if (wish.log)
        adapter.set_observer([](const virtual_adapter::exchange& done) {
            print(stderr, QStringLiteral("> %1\n< %2").arg(readable(done.command), readable(done.reply)));
        });
}

int serve_network(const virtual_adapter::wishes& wish, const std::shared_ptr<virtual_adapter::car>& on) {
    virtual_adapter_server server;
    set_up(server, wish);
    const quint16 port = server.start(on, wish.port, wish.address);
    if (port == 0) {
        print(stderr, QStringLiteral("Cannot listen: %1").arg(server.error()));
        return exit_failed;
    }
    print(stdout, QStringLiteral("listening on %1:%2").arg(wish.address.toString()).arg(port));
    return QCoreApplication::exec();
}

int serve_port(const virtual_adapter::wishes& wish, const std::shared_ptr<virtual_adapter::car>& on) {
    pty_adapter adapter;
    set_up(adapter, wish);
    adapter.set_speed(wish.pty_speed);
    const auto plug_in = [&] {
        const QString path = adapter.plug_in(on);
        if (path.isEmpty())
            print(stderr, QStringLiteral("Cannot make a pseudo-terminal: %1").arg(adapter.error()));
        else
            print(stdout, path);
        return !path.isEmpty();
    };
    QObject::connect(&adapter, &pty_adapter::unplugged, [&] {
        QTimer::singleShot(unplugged_ms, &adapter, [&] {
            if (!plug_in())
                QCoreApplication::exit(exit_failed);
        });
    });
    return plug_in() ? QCoreApplication::exec() : exit_failed;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("brivant-virtual-adapter"));
    QCoreApplication::setApplicationVersion(QStringLiteral(BV_VERSION));

    using namespace virtual_adapter;
    const wishes wish = read_command_line(QCoreApplication::arguments());
    if (!wish.mistake.isEmpty()) {
        print(stderr, wish.mistake);
        return exit_usage;
    }
    if (!wish.print_and_leave.isEmpty()) {
        print(stdout, wish.print_and_leave);
        return 0;
    }

    QString problem;
    const std::shared_ptr<car> on = load_car(wish.car, problem);
    if (!on) {
        print(stderr, problem);
        return exit_usage;
    }
    if (wish.still)
        on->set_clock([] { return steady_moment_s; });

    if (wish.shows_ceiling) {
        for (const std::string& line : ceiling_of(on, wish.options, wish.ceiling_of).lines)
            print(stdout, QString::fromStdString(line));
        return 0;
    }

    return wish.pty ? serve_port(wish, on) : serve_network(wish, on);
}
