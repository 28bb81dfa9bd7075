// What an adapter sends, in pieces of any size, through the reading of bytes, the exchange and the reply
// check.
//
// An input is the bytes of the adapter, with control characters between them for what else happens:
//   01     the piece ends here, and is received
//   02     the running time-out comes
//   03 c   the controller gives up its command and sends another: the one at place c of the list
//   04 d   the adapter's protocol is d, one hex digit
//   05     the operation is left
//   06     the link is made anew
//   07     the operation is left for the expert console, or back from it
//   08     the piece so far, sixteen times over: replies longer than any input
//   09     from now on each reply is followed by the next command at once, or no more

#include "base/console_log.h"
#include "link/exchange.h"
#include "link/wifi_transport.h"
#include "obd/number_text.h"
#include "obd/reply_text.h"
#include "tests/fuzz/must_hold.h"

#include <QByteArrayList>
#include <cstdint>

namespace brivant {

namespace {

struct command {
    const char* text;
    const char* expected; // null: checked by message
    bool has_header;
};

// Every kind of check that a reply can meet.
constexpr command commands[] = {
    {"01 0C\r", nullptr, true},     {"AT Z\r", "OK|ELM", false},   {"AT DP\r", "AUTO|ISO|SAE", false},
    {"AT DPN\r", "A", false},       {"AT RV\r", "8|9|1", false},   {"01 00|12.0\r", "4100", false},
    {"01 00\r", nullptr, true},     {"03\r", nullptr, true},       {"09 02|5\r", "4902", false},
    {"06 01|1e9\r", nullptr, true}, {"22 10 2A\r", nullptr, true}, {"02 0C 00|\r", nullptr, false},
    {"04|0.5\r", "44", false},      {"\r", nullptr, true},
};

constexpr qsizetype longest_piece = 2 * rx_buffer::limit;

// One timer, which stands still until it is told to come.
class still_timers : public timers {
public:
    timer_handle one_shot(int milliseconds, std::function<void()> call) override {
        must_hold(milliseconds >= 100 && milliseconds <= 600'000,
                  "a pause is a tenth of a second to ten minutes");
        must_hold(++running == 1, "one command is timed at a time");
        due = std::move(call);
        return std::make_unique<handle>(*this);
    }
    timer_handle repeating(int, std::function<void()>) override { return nullptr; }
    std::int64_t microseconds() const override { return 0; }
    bool is_running() const { return running > 0; }
    void come() {
        const std::function<void()> call = due; // it may set the next one
        if (running > 0)
            call();
    }

private:
    struct handle : running_timer {
        explicit handle(still_timers& its_owner) : owner(its_owner) {}
        ~handle() override { --owner.running; }
        still_timers& owner;
    };
    int running = 0;
    std::function<void()> due;
};

// Drives an exchange as the link and a controller do, and keeps its own account of what was received.
class session : exchange_owner {
public:
    void play(const QByteArray& input) {
        send(0);
        for (qsizetype i = 0; i < input.size(); ++i) {
            const char next = i + 1 < input.size() ? input[i + 1] : '\0';
            switch (input[i]) {
            case 1: receive(); break;
            case 2: time_out(); break;
            case 3:
                ++i;
                leave();
                send(static_cast<unsigned char>(next));
                break;
            case 4:
                ++i;
                told.protocol = hex_digit(QLatin1Char(next));
                break;
            case 5: leave(); break;
            case 6:
                traffic.reset();
                held.clear();
                break;
            case 7:
                leave();
                is_console = !is_console;
                break;
            case 8: piece = piece.repeated(16).left(longest_piece); continue;
            case 9: is_eager = !is_eager; break;
            default: piece += input[i]; continue;
            }
            at_rest();
        }
        receive();
        at_rest();
    }

private:
    void send(size_t place) {
        const command& sent = commands[place % std::size(commands)];
        place_sent = place;
        sent_command what =
            command_of(QLatin1String(sent.text),
                       sent.expected ? QString(QLatin1String(sent.expected)) : QString(), sent.has_header);
        what.why = is_console ? sent_command::purpose::typed : sent_command::purpose::ordinary;
        traffic.send(what);
    }

    void leave() {
        receive();
        traffic.abandon();
    }

    // The account: what came since the last prompt or the last command, and the replies of this piece.
    void receive() {
        const QString text = decode_received(std::exchange(piece, {}));
        if (text.isEmpty())
            return;
        replies = (std::exchange(held, {}) + text.toUtf8()).split('>');
        held = replies.takeLast();
        traffic.handleOBDRcvdNotification(text);
    }

    void time_out() {
        receive();
        clock.come();
    }

    void at_rest() {
        must_hold(clock.is_running() == traffic.is_in_flight(),
                  "a command is timed as long as it is in flight");
        must_hold(traffic.timeouts() >= 0 && traffic.timeouts() <= 4, "four time-outs at most");
    }

    void check(const QString& handed_on) {
        const bool came_whole =
            std::any_of(replies.cbegin(), replies.cend(), [&handed_on](const QByteArray& reply) {
                return reply.size() < rx_buffer::limit && handed_on == prepReply(QString::fromUtf8(reply));
            });
        must_hold(came_whole || handed_on == no_reply, "what is handed on came whole between two prompts");
    }

    // exchange_owner
    void transmit(const QByteArray&) override { held.clear(); }
    void show_status(const QString&) override {}
    void pop_a_messy(const QString&, const QString&) override {}
    void adapter_started_anew() override {}
    void piece_arrived(const QString&) override {}
    void reply_refused() override { traffic.abandon(); }
    void reply_arrived(const reply& handed_on) override {
        must_hold(!traffic.is_in_flight(), "a reply ends the command");
        if (traffic.current_command().why != sent_command::purpose::typed)
            check(handed_on.text());
        if (is_eager)
            send(place_sent + 1);
    }
    void command_unanswered() override {
        traffic.reset();
        held.clear();
    }

    const adapter_place somewhere{};
    struct : adapter_facts {
        using adapter_facts::protocol;
    } told;
    bool is_console = false;
    still_timers clock;
    exchange traffic{somewhere, told, clock, *this};
    QByteArray piece; // not yet received
    QByteArray held;
    QByteArrayList replies;
    size_t place_sent = 0;
    bool is_eager = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    silence_console_log();
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    session().play(input);
    for (const QByteArray& line : input.split('\r')) {
        const QString request = QString::fromUtf8(line).toUpper(); // some letters become two or three
        must_hold(positive_reply_of(request).size() <= std::max<qsizetype>(request.size(), 2),
                  "the start of a positive reply is no longer than the request");
    }
    return 0;
}

} // namespace brivant
