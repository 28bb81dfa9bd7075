#include "shell/link_rows.h"

#include "livedata/passport_words.h"

#include <QFile>
#include <QLocale>

#include <algorithm>
#include <tuple>

namespace brivant {

namespace {

class row_maker {
public:
    row_maker(const adapter_list& its_adapters, const adapter_link& its_link,
              const QStringList& its_passports)
        : adapters(its_adapters), link(its_link), passports(its_passports) {}

    link_row& row_of(const adapter_address& where) {
        for (link_row& row : rows) {
            if (row.where.kind == where.kind && row.where.key() == where.key())
                return row;
        }
        rows += link_row();
        rows.last().where = where;
        return rows.last();
    }
    void take(const known_adapter& one);
    void take_place(const adapter_place& place);
    void take(const serial_port& port);
    void take(const bluetooth_device& device);
    void take(const probed_adapter& answer);
    QList<link_row> finished();

private:
    QString what_is_known_of(const adapter_address& where, const QString& greeting) const {
        QStringList words{greeting};
        if (const auto passport = passport_in(passports, where.key()))
            words += brief_words(*passport);
        words.removeAll(QString());
        return words.join(QStringLiteral(", "));
    }

    const adapter_list& adapters;
    const adapter_link& link;
    const QStringList& passports;
    QList<link_row> rows;
};

void row_maker::take(const known_adapter& one) {
    link_row& row = row_of(one.where);
    row.name = one.name;
    row.what = what_is_known_of(one.where, one.greeting);
    row.last_used = QLocale().toString(one.last_used, QLocale::ShortFormat);
    row.vehicles = one.vehicles;
    row.is_known = row.is_likely = true;
    if (one.where.kind == interface_serial)
        row.state =
            QFile::exists(one.where.where) ? QStringLiteral("plugged in") : QStringLiteral("not plugged in");
}

// Where the link goes, known or not.
void row_maker::take_place(const adapter_place& place) {
    if (place.now().where.isEmpty())
        return;
    link_row& row = row_of(place.now());
    row.is_likely = true;
    if (row.name.isEmpty() && place.is_device())
        row.name = place.device_called();
    if (adapters.leads_to_demo()) {
        row.name = QStringLiteral("Demo car");
        row.what = QStringLiteral("a car and its adapter inside the program");
    }
}

void row_maker::take(const serial_port& port) {
    link_row& row = row_of({interface_serial, port.stable_name, 0});
    const QString told = QStringLiteral("%1 %2").arg(port.maker, port.product).trimmed();
    if (row.name.isEmpty())
        row.name = port.product.isEmpty() ? port.path : port.product;
    if (row.what.isEmpty())
        row.what = told.isEmpty() ? port.path : QStringLiteral("%1 (%2)").arg(told, port.path);
    row.state = QStringLiteral("plugged in");
    row.is_likely |= port.has_adapter_chip;
}

void row_maker::take(const bluetooth_device& device) {
    link_row& row = row_of({device.is_le ? interface_le : interface_bluetooth, device.address, 0});
    if (row.name.isEmpty())
        row.name = device.name;
    if (device.is_le)
        row.state = QStringLiteral("around");
    else
        row.state = device.paired ? QStringLiteral("paired") : QStringLiteral("not paired");
    row.is_likely |= device.may_be_adapter;
}

void row_maker::take(const probed_adapter& answer) {
    const bool is_new_place = std::none_of(rows.begin(), rows.end(), [&](const link_row& row) {
        return row.where.kind == answer.where.kind && row.where.key() == answer.where.key();
    });
    if (is_new_place && !answer.is_adapter())
        return; // nobody is there
    link_row& row = row_of(answer.where);
    if (answer.is_adapter()) {
        row.where.number = answer.where.number;
        row.what = what_is_known_of(answer.where, answer.greeting);
        row.state = QStringLiteral("answers");
        row.is_likely = true;
    } else {
        row.state = QStringLiteral("does not answer");
    }
    if (row.name.isEmpty())
        row.name = answer.name;
}

QList<link_row> row_maker::finished() {
    for (link_row& row : rows) {
        if (row.name.isEmpty())
            row.name = row.where.where;
        row.is_in_force = adapters.is_in_force(row.where);
        if (!row.is_in_force)
            continue;
        const QString how = link.is_connected() ? QStringLiteral("connected")
                            : link.is_opening() ? QStringLiteral("connecting")
                                                : QStringLiteral("in use");
        row.state = row.state.isEmpty() || link.is_connected() ? how : how + QStringLiteral(", ") + row.state;
    }
    std::stable_sort(rows.begin(), rows.end(), [](const link_row& one, const link_row& other) {
        const auto rank = [](const link_row& row) {
            return std::tuple(!row.is_in_force, !row.is_known, !row.is_likely);
        };
        return rank(one) < rank(other);
    });
    return rows;
}

} // namespace

QList<link_row> link_rows(const adapter_list& adapters, const adapter_link& link,
                          const QStringList& passports, const links_around& around) {
    row_maker maker(adapters, link, passports);
    for (const known_adapter& one : adapters.known())
        maker.take(one);
    maker.take_place(link.place());
    for (const serial_port& port : around.ports)
        maker.take(port);
    for (const bluetooth_device& device : around.devices)
        maker.take(device);
    for (const probed_adapter& answer : around.answers)
        maker.take(answer);
    return maker.finished();
}

} // namespace brivant
