#pragma once

#include <QLabel>

namespace brivant {

// One line of plain text that is cut with "..." where the room ends; the tool tip holds all of it. A text of
// several lines is shown as one.
class elided_label : public QLabel {
    Q_OBJECT

public:
    explicit elided_label(QWidget* parent = nullptr);

    void set_text(const QString& text);
    const QString& full_text() const { return whole; }

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void fit();

    QString whole;
};

} // namespace brivant
