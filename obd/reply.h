#pragma once

#include "obd/obd_messages.h"

#include <algorithm>
#include <memory>

namespace brivant {

// What one ECU said in a reply with headers.
struct ecu_said {
    // Why it is not whole: other than whole bytes in a line, fewer bytes than its length says, or a frame of
    // a long answer that did not come.
    enum class damage { none, no_hex, cut, frame_missing };

    QString header;     // that of its first line
    QStringList bodies; // of its lines, in order
    int protocol = -1;
    QString data; // its bodies joined: see l_pullOBDFromSingleGroupedMsg

    damage what_is_wrong() const;
    bool is_whole() const { return what_is_wrong() == damage::none; }
    // How many digits of `data` came, up to the first frame that is missing: the decoder fills up the rest.
    qsizetype digits_received() const;
    // What it refused and why, when it did.
    std::optional<negative_response> refused() const;

    // The data without what hangs on behind it; "N/A" of an answer on CAN that is not whole.
    QString value() const;
    // The same of the first line alone, "" when that is damaged. A long answer on CAN is taken with all its
    // frames.
    QString value_of_first_line() const;
};

// A reply of the adapter, taken apart when that is first asked for. Cheap to copy; what it refers to lives as
// long as one of the copies.
class reply {
public:
    // `what_came`: its text normalised (prepReply).
    explicit reply(const raw_reply& what_came = {});
    // The absence of a usable reply ("~"). `instead`: what came and was given up on.
    static reply none(const raw_reply& instead = {});

    // "~" when nothing usable came; what came all the same is in raw().
    const QString& text() const { return shared->is_given_up ? no_reply : shared->raw.text; }
    const raw_reply& raw() const { return shared->raw; }
    int protocol() const { return shared->raw.protocol; }
    bool headers_shown() const { return shared->raw.headers_shown; }

    bool is_none() const { return text() == no_reply; }
    bool no_data() const { return text().contains(QLatin1String("NODATA")); }
    // A "?" of its own; beside data it is noise, which some adapters send after a reset.
    bool refused_by_adapter() const;
    // Nothing that could be decoded.
    bool holds_nothing() const { return is_none() || no_data() || refused_by_adapter(); }

    // See reply_lines.
    const QStringList& lines() const&;
    const QStringList& lines() const&& = delete; // it would outlive what it refers to
    // What each ECU said, by its header; a reply that was shown without headers has none to go by. Empty
    // while the protocol is unknown.
    const QList<ecu_said>& ecus() const&;
    const QList<ecu_said>& ecus() const&& = delete;
    // The first of them for which `fits` holds, null for none.
    template <class check>
    const ecu_said* first(check fits) const {
        const auto found = std::find_if(ecus().begin(), ecus().end(), fits);
        return found == ecus().end() ? nullptr : &*found;
    }
    // The engine's ECU, the first one when none has its header; null when nobody answered.
    const ecu_said* engine() const&;
    const ecu_said* engine() const&& = delete;
    // The first ECU that does not refuse, else the first: a refusal's shorter header may well sort before
    // another ECU's answer.
    const ecu_said* answering() const&;
    const ecu_said* answering() const&& = delete;
    // The ECU with this header, null when it is not among those that answered.
    const ecu_said* ecu(const QString& header) const&;
    const ecu_said* ecu(const QString& header) const&& = delete;
    // What this ECU answers (none: ""); without headers, where nobody can be told apart, the data that begin
    // with `answer`.
    QString value_of(const ecu_said* who, const QString& answer) const;
    // Without headers: the data that begin with `answer` ("4105"): the first such line of whole bytes, or the
    // frames of a long answer joined. "" when there is none, or not all of it.
    QString data_without_headers(const QString& answer) const;

private:
    struct parts {
        raw_reply raw;
        bool is_given_up = false;
        std::optional<QStringList> lines = {};
        std::optional<QList<ecu_said>> ecus = {};
    };
    std::shared_ptr<parts> shared;
};

} // namespace brivant
