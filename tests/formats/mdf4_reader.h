#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

// A reader of ASAM MDF 4.10 files with sorted, uncompressed groups of floating-point numbers, by the layout
// that the standard gives. It shares no code with the writer.
struct mdf4_file {
    struct channel {
        QString name, unit, comment;
        int type = 0, sync = 0, data_type = 0;
        quint32 byte_offset = 0, bits = 0, flags = 0, invalidation_bit = 0;
    };
    struct event {
        QString name;
        int type = 0, sync = 0, range = 0, cause = 0;
        double seconds = 0;
    };

    bool is_finished = false;
    quint16 to_mend = 0;
    quint64 start_ns = 0;
    QString comment, history;
    quint64 announced_records = 0;
    int data_blocks = 0;
    QList<channel> channels;
    QList<QList<std::optional<double>>> records; // a number a channel, none where it is invalid
    QList<event> events;
    QString fault; // the first thing that is not as the standard has it
};

// A file that was not finished is mended as it says.
mdf4_file read_mdf4(const QByteArray& bytes);
