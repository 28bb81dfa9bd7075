#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/ceiling.h"
#include "tools/virtual_adapter/command_line.h"
#include "tools/virtual_adapter/virtual_adapter_server.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

enum exit_code { exit_failed = 1, exit_usage = 2 };

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

    virtual_adapter_server server;
    server.set_options(wish.options);
    server.set_faults(wish.what);
    if (wish.log)
        server.set_observer([](const exchange& done) {
            print(stderr, QStringLiteral("> %1\n< %2").arg(readable(done.command), readable(done.reply)));
        });
    const quint16 port = server.start(on, wish.port, wish.address);
    if (port == 0) {
        print(stderr, QStringLiteral("Cannot listen: %1").arg(server.error()));
        return exit_failed;
    }
    print(stdout, QStringLiteral("listening on %1:%2").arg(wish.address.toString()).arg(port));
    return QCoreApplication::exec();
}
