#pragma once

#include "app/screen/screen_view.h"

#include <QImage>
#include <functional>

class QPagedPaintDevice;

namespace brivant {

// Saves the picture of a widget as a PNG or PDF file, copies or prints it: as large as it is shown, with two
// pixels to a point at least.
class picture_saver : public QObject {
    Q_OBJECT

public:
    // `file_name`: proposed for saving, without an extension. `shown`: the widget that is to be saved. All
    // that is given outlives it.
    picture_saver(QWidget& its_view, const view_context& its_context, const QString& file_name,
                  std::function<QWidget*()> shown);

    void copy();
    // Asks for a file first.
    void save();
    // The extension tells which kind; PNG for any other than ".pdf".
    void save_to(const QString& file);
    // Asks for a printer first.
    void print();
    // One page, upright or across as the picture is.
    void paint_page(QPagedPaintDevice& page) const;

Q_SIGNALS:
    // What was done, for a short notice.
    void done(const QString& what);
    // Why the picture was not saved.
    void failed(const QString& sentence);

private:
    QImage picture() const;

    QWidget& view;
    view_context context;
    const QString name;
    std::function<QWidget*()> what;
};

} // namespace brivant
