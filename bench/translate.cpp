// How many replies a second translateResponse turns into text, beside a bare conversion of the same replies
// from hex digits to bytes: the least that any decoder must do. Run a release build on an otherwise idle
// machine.

#include "base/text_resources.h"
#include "obd/pid_translation.h"

#include <QStringList>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

using namespace brivant;

namespace {

constexpr int rounds = 11;
constexpr int passes = 20000;

// What a live run receives, as the link hands it on: most of it one or two data bytes.
const QStringList& typical_replies() {
    static const QStringList replies{
        "410C1AF8", "410D3C", "410480",       "41057B",   "41112A",   "411003E8", "410B64",   "410F46",
        "410E8A",   "41067B", "411464FF",     "41155A80", "411F0E75", "4131012C", "41421234", "412F80",
        "413365",   "41450A", "412480004000", "41E40181", "41E58C",   "410302",   "411C02",   "410D",
    };
    return replies;
}

// The median over the rounds of the replies a second. `convert` gives the size of what it made of a reply.
template <typename function>
double median_rate(function convert, qsizetype& made) {
    std::vector<double> rates;
    for (int round = 0; round < rounds; ++round) {
        const auto start = std::chrono::steady_clock::now();
        for (int pass = 0; pass < passes; ++pass)
            for (const QString& reply : typical_replies())
                made += convert(reply);
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
        rates.push_back(static_cast<double>(passes) * static_cast<double>(typical_replies().size()) /
                        seconds.count());
    }
    std::nth_element(rates.begin(), rates.begin() + rounds / 2, rates.end());
    return rates[rounds / 2];
}

} // namespace

int main() {
    const text_resources lists;
    qsizetype made = 0; // printed, so that no conversion can be left out
    const auto translate = [&lists](unit_system units) {
        return
            [&lists, units](const QString& reply) { return translateResponse(reply, units, lists).size(); };
    };
    const double metric = median_rate(translate(unit_system::metric), made);
    const double imperial = median_rate(translate(unit_system::imperial), made);
    const double value = median_rate(
        [&lists](const QString& reply) {
            return get_OBDVal(reply, unit_system::metric, lists) > 0 ? qsizetype{1} : qsizetype{0};
        },
        made);
    const double bytes =
        median_rate([](const QString& reply) { return QByteArray::fromHex(reply.toLatin1()).size(); }, made);

    std::printf("translateResponse, metric    %10.0f a second\n", metric);
    std::printf("translateResponse, imperial  %10.0f a second\n", imperial);
    std::printf("get_OBDVal, metric           %10.0f a second\n", value);
    std::printf("hex digits to bytes          %10.0f a second\n", bytes);
    std::printf("translateResponse, metric, takes %.2f times as long as hex digits to bytes\n",
                bytes / metric);
    std::printf("(median of %d rounds of %lld replies; %lld characters made)\n", rounds,
                static_cast<long long>(passes * typical_replies().size()), static_cast<long long>(made));
    return 0;
}
