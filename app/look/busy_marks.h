#pragma once

#include <QTimer>
#include <QWidget>

namespace brivant {

// The two signs that something runs, drawn in the colour of text. Their timers run only while they are seen.

// A ring: it fills as far as the work has come, or a piece turns in it while that is not known.
class busy_ring : public QWidget {
    Q_OBJECT

public:
    explicit busy_ring(QWidget* parent = nullptr) : busy_ring(small_ring, parent) {}
    busy_ring(int size, QWidget* parent);

    // How far the work has come; a total of 0 when that is not known.
    void set_progress(qint64 its_done, qint64 its_total);

protected:
    void paintEvent(QPaintEvent*) override;
    void showEvent(QShowEvent*) override { turn_or_stand(); }
    void hideEvent(QHideEvent*) override { turning.stop(); }

private:
    static constexpr int small_ring = 18;

    void turn_or_stand();

    QTimer turning;
    int angle = 0;
    double part = -1; // of the whole; negative while it is not known
};

// A thin bar: it fills as far as the work has come, or a piece moves through it while that is not known. It
// keeps its place when nothing runs, so that nothing jumps.
class busy_bar : public QWidget {
    Q_OBJECT

public:
    explicit busy_bar(QWidget* parent = nullptr);

    void set_running(bool runs);
    bool is_running() const { return running; }
    // How far the work has come; a total of 0 when that is not known.
    void set_progress(int its_done, int its_total);

protected:
    void paintEvent(QPaintEvent*) override;
    void showEvent(QShowEvent*) override { move_or_stand(); }
    void hideEvent(QHideEvent*) override { moving.stop(); }

private:
    void move_or_stand();

    QTimer moving;
    double place = 0; // 0 to 1
    int done = 0;
    int total = 0;
    bool running = false;
};

} // namespace brivant
