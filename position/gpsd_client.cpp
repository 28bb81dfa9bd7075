#include "position/gpsd_client.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr int longest_pause_s = 30;
constexpr int second_ms = 1000;
constexpr int connecting_ms = 10'000;
constexpr int silent_ms = 60'000; // a receiver reports each second, a gpsd without one says nothing
constexpr int most_broken = 20;
constexpr int us_a_ms = 1000;

int pause_s(int tries) {
    constexpr int most_doublings = 5;
    return std::min(1 << std::min(tries, most_doublings), longest_pause_s);
}

} // namespace

gpsd_client::gpsd_client(user_defaults& settings, timers& time_source)
    : defaults(settings), clock(time_source) {
    socket.setReadBufferSize(longest_line);
    connect(&socket, &QTcpSocket::connected, this, &gpsd_client::connected);
    connect(&socket, &QTcpSocket::readyRead, this, &gpsd_client::take_bytes);
    connect(&socket, &QTcpSocket::errorOccurred, this, [this] { try_again(socket.errorString()); });
}

void gpsd_client::begin() {
    end();
    place_text = defaults.value(setting::gpsd);
    if (!defaults.value(setting::store_position))
        return;
    place = gpsd_place::of(place_text);
    if (place)
        try_it();
}

void gpsd_client::end() {
    place.reset();
    pause.reset();
    socket.abort();
    tries = broken = 0;
    problem.clear();
    fix.reset();
}

void gpsd_client::try_it() {
    pause = clock.one_shot(connecting_ms, [this] { try_again(QStringLiteral("it does not answer")); });
    socket.connectToHost(place->host, place->port);
}

void gpsd_client::connected() {
    broken = 0;
    problem.clear();
    pause = clock.one_shot(silent_ms, [this] { try_again(QStringLiteral("it says nothing")); });
    socket.write("?WATCH={\"enable\":true,\"json\":true};\n");
}

void gpsd_client::try_again(const QString& why) {
    if (!place)
        return;
    problem = why;
    pause = clock.one_shot(second_ms * pause_s(tries++), [this] { try_it(); });
    socket.abort();
}

void gpsd_client::take_bytes() {
    while (place && socket.canReadLine())
        take_line(socket.readLine(longest_line + 1));
    if (socket.bytesAvailable() >= longest_line)
        try_again(QStringLiteral("it is no gpsd"));
}

void gpsd_client::take_line(const QByteArray& line) {
    const gpsd_line said = gpsd_line::of(line);
    if (said.what == gpsd_line::kind::broken) {
        if (++broken > most_broken)
            try_again(QStringLiteral("it is no gpsd"));
        return;
    }
    broken = 0;
    pause = clock.one_shot(silent_ms, [this] { try_again(QStringLiteral("it says nothing")); });
    if (said.what == gpsd_line::kind::other || (is_fresh() && said.device != device))
        return; // with two receivers the first to have a fix is listened to while it has one
    tries = 0;
    if (said.what == gpsd_line::kind::fix)
        take_fix(said);
    else
        fix.reset();
}

// Several reports of one moment are one fix, and one that comes again is not new.
void gpsd_client::take_fix(const gpsd_line& report) {
    const bool is_same = fix && device == report.device && !report.time.isEmpty() && time == report.time;
    fix = position_fix{report.where, is_same ? fix->told_us : clock.microseconds()};
    device = report.device;
    time = report.time;
}

bool gpsd_client::is_fresh() const {
    return fix && clock.microseconds() - fix->told_us <= qint64{us_a_ms} * fresh_ms;
}

std::optional<position_fix> gpsd_client::latest() const {
    return is_fresh() ? fix : std::nullopt;
}

QString gpsd_client::about() const {
    if (!defaults.value(setting::store_position))
        return QStringLiteral("Position: not stored, as the setting BV_store_position says");
    if (!gpsd_place::of(place_text))
        return QStringLiteral("Position: none, \"%1\" in the setting BV_gpsd is no host:port")
            .arg(place_text.left(60));
    if (is_fresh())
        return QStringLiteral("Position: stored with each sweep, from gpsd at %1").arg(place_text);
    if (is_there())
        return QStringLiteral("Position: none yet, gpsd at %1 has no fix").arg(place_text);
    return QStringLiteral("Position: none, gpsd at %1 cannot be asked%2")
        .arg(place_text, problem.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(problem));
}

} // namespace brivant
