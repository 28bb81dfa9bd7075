#include "tests/formats/run_bench.h"

#include <QFile>
#include <QXmlStreamReader>

namespace brivant {

namespace {

// Holds so many bytes, then it is full.
class small_disk : public QBuffer {
public:
    explicit small_disk(qint64 its_size) : size_of_disk(its_size) { open(QIODevice::ReadWrite); }

protected:
    qint64 writeData(const char* data, qint64 size) override {
        if (pos() + size <= size_of_disk)
            return QBuffer::writeData(data, size);
        setErrorString("No space left on device");
        return -1;
    }

private:
    qint64 size_of_disk;
};

class pipe_end : public QBuffer {
public:
    bool isSequential() const override { return true; }
};

// A round with two halts: an hour's silence between its halves.
QList<run_item> round() {
    const auto at = [](double ms, double longitude, std::optional<double> speed) {
        return timed_sweep{ms,
                           {900.0, 12.25, std::nullopt},
                           {1, 2, 3},
                           geo_position{52.5, longitude, 34.5, speed, {}, {}, -20}};
    };
    timed_sweep nowhere = at(300, 200, 1);
    return {timed_mark{-1, "start"},
            at(0, 13.25, 4.5),
            timed_mark{140, "ramp <1>"},
            at(150, 13.251, std::nullopt),
            timed_mark{151, "a"},
            timed_mark{150.5, "b"},
            nowhere,
            timed_sweep{450, {std::nullopt, std::nullopt, 80.0}, {1, 2, 3}, {}},
            at(3'600'000, 13.252, 0.0)};
}

} // namespace

TEST(run_writers, msl) {
    run_head head = drive_head();
    head.vehicle = "The \"blue\"\tone";
    head.has_offsets = false;
    EXPECT_EQ(written(run_format::kind::msl, head, round()),
              "\"Brivant Lite 0.1.0; start 2013-05-01T14:04:07.123Z; vehicle The 'blue' one; values in the "
              "program's own "
              "reading; metric units\"\r\n"
              "\"Capture Date: Wed May 01 14:04:07 UTC 2013\"\r\n"
              "Time\tEngine RPM\tVehicle speed\tEngine coolant temperature\r\n"
              "s\tRPM\tkph\t\u00B0 C\r\n"
              "MARK 001 - start\r\n"
              "0.000000\t900\t12.25\tNaN\r\n"
              "MARK 002 - ramp <1>\r\n"
              "0.150000\t900\t12.25\tNaN\r\n"
              "MARK 003 - b\r\n"
              "MARK 004 - a\r\n"
              "0.300000\t900\t12.25\tNaN\r\n"
              "0.450000\tNaN\tNaN\t80\r\n"
              "3600.000000\t900\t12.25\tNaN\r\n");
}

TEST(run_writers, gpx) {
    run_head head = drive_head();
    head.vehicle = "A & B";
    head.has_positions = true;
    const QByteArray bytes = written(run_format::kind::gpx, head, round());
    EXPECT_EQ(
        bytes.mid(bytes.indexOf("<metadata>")),
        "<metadata><desc>Brivant Lite 0.1.0; start 2013-05-01T14:04:07.123Z; vehicle A &amp; B; values in "
        "the "
        "program's own reading; metric units</desc><time>2013-05-01T14:04:07.123Z</time></metadata>\n"
        "<trk><name>A &amp; B</name>\n"
        "<trkseg>\n"
        "<trkpt lat=\"52.5\" lon=\"13.25\"><ele>34.5</ele><time>2013-05-01T14:04:07.103Z</time><name>start; "
        "ramp "
        "&lt;1&gt;</name><extensions><gpxtpx:TrackPointExtension><gpxtpx:speed>4.5</gpxtpx:speed>"
        "</gpxtpx:TrackPointExtension></extensions></trkpt>\n"
        "<trkpt lat=\"52.5\" lon=\"13.251\"><ele>34.5</ele><time>2013-05-01T14:04:07.253Z</time><name>b; "
        "a</name>"
        "</trkpt>\n"
        "</trkseg>\n"
        "<trkseg>\n"
        "<trkpt lat=\"52.5\" lon=\"13.252\"><ele>34.5</ele><time>2013-05-01T15:04:07.103Z</time><extensions>"
        "<gpxtpx:TrackPointExtension><gpxtpx:speed>0</gpxtpx:speed></gpxtpx:TrackPointExtension></extensions>"
        "</trkpt>\n"
        "</trkseg>\n</trk>\n</gpx>\n");
    for (const QByteArray& whole : {bytes, written(run_format::kind::gpx, head, {})}) {
        QXmlStreamReader xml(whole);
        while (!xml.atEnd())
            xml.readNext();
        EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    }
}

// Wherever the disk is full, the step says so and why, and nothing is written behind it.
TEST(run_writers, full_disk) {
    run_head head = drive_head();
    head.has_positions = true;
    for (const run_format& format : run_formats()) {
        const qint64 whole = written(format.what, head, round()).size();
        for (qint64 size = 0; size <= whole; ++size) {
            small_disk disk(size);
            const auto writer = make_run_writer(format.what, disk);
            ASSERT_EQ(write_run(*writer, head, round()), size == whole) << format.word << ' ' << size;
            EXPECT_EQ(writer->problem(),
                      size == whole ? ""
                                    : "The file cannot be written to its end (No space left on device).");
            EXPECT_LE(disk.data().size(), size);
        }
        QFile full("/dev/full"); // which takes what its buffer holds
        ASSERT_TRUE(full.open(QIODevice::WriteOnly));
        const auto writer = make_run_writer(format.what, full);
        EXPECT_FALSE(write_run(*writer, head, round())) << format.word;
    }
}

TEST(run_writers, pipe) {
    for (const run_format& format : run_formats()) {
        pipe_end pipe;
        pipe.open(QIODevice::WriteOnly);
        const auto writer = make_run_writer(format.what, pipe);
        EXPECT_EQ(writer->begin(drive_head()), format.what != run_format::kind::mdf4) << format.word;
        EXPECT_EQ(run_format_of(format.word), &format);
    }
    EXPECT_EQ(run_format_of("csv"), nullptr);
}

} // namespace brivant
