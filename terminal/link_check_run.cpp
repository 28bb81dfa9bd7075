#include "terminal/link_check_run.h"

#include "terminal/output.h"

namespace brivant {

namespace {

const char* mark_of(check_row::grade how) {
    switch (how) {
    case check_row::grade::good: return "[good] ";
    case check_row::grade::amber: return "[fair] ";
    case check_row::grade::red: return "[bad]  ";
    default: return "[--]   ";
    }
}

} // namespace

link_check_run::link_check_run(program_core& its_core)
    : car_run(its_core),
      controller(core.car, delegate.link, core.toolies, view, core.defaults, core.clock, core.paths) {}

void link_check_run::start() {
    on_stop([this] { controller.stop(); });
    begin();
    delegate.link.set_controller(&controller);
    controller.operation_ended = [this](bool done) {
        after_last_words(done, [this, done] { print_result(done); });
    };
    controller.start();
}

void link_check_run::print_result(bool done) {
    if (core.options.json) {
        QJsonObject told = json_of(controller.findings());
        told.insert(QStringLiteral("protocol"), delegate.link.adapter().protocol_description());
        print_json(view.with_messages(told, done));
    } else {
        QString text = controller.verdict().words + QStringLiteral("\n\n");
        for (const check_row& row : controller.rows())
            text += QLatin1String(mark_of(row.how)) + row.title + QStringLiteral(": ") + row.words + u'\n';
        print(text);
    }
    Q_EMIT finished(done && is_all_printed() ? 0 : 1);
}

} // namespace brivant
