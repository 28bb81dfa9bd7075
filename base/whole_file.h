#pragma once

#include <QIODevice>

namespace brivant {

// A file that is there whole or not at all. What is written goes to a new file beside it, "NAME.XXXXXX.part",
// for its owner alone, which takes the name when commit() has brought it to the disk. Until then, and after
// any failure, what stood under the name stands there as it was. A writer that goes without commit() leaves
// nothing behind; what a killed program left goes with the next writer of that name. No link is followed, and
// nothing but a regular file is replaced. errorString() says in a few plain words why something failed: "No
// space left on device".
class whole_file : public QIODevice {
public:
    enum class existing { is_replaced, is_refused };

    explicit whole_file(const QString& path, existing what_is_there = existing::is_replaced);
    ~whole_file() override;

    // Opens it for writing. False when it cannot be made, or when what stands under the name must not be
    // replaced.
    bool begin();
    // Everything written so far is on the disk, in part_name().
    bool bring_to_disk();
    const QString& part_name() const { return part; }
    // The file is on the disk, under its name. False also when a write before this one failed.
    bool commit();
    void give_up();

    const QString& name() const { return target; }
    bool isSequential() const override { return false; }
    // Over what was written before.
    bool seek(qint64 place) override;
    qint64 size() const override { return length; }

    static constexpr qsizetype longest_name = 255; // bytes, of most file systems

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char* bytes, qint64 size) override;

private:
    bool make_part();
    bool flush();
    bool put_in_place();
    bool bring_folder_to_disk();
    bool fail(int error);
    bool fail(const QString& reason);
    void drop_part();
    // Why what stands under the name must not be replaced, "" when it may.
    QString in_the_way() const;
    void remove_leftovers() const;

    const QString target;
    const existing there;
    QString part;
    QByteArray waiting; // to be written
    qint64 length = 0;
    int file = -1;
    bool has_failed = false;
};

} // namespace brivant
