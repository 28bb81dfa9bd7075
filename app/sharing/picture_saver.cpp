#include "app/sharing/picture_saver.h"

#include "app/sharing/saving.h"
#include "base/whole_file.h"

#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QImageWriter>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <algorithm>

namespace brivant {

namespace {

constexpr double least_ratio = 2;  // pixels to a point
constexpr double page_margin = 15; // mm
const QString pdf = QStringLiteral(".pdf");

} // namespace

picture_saver::picture_saver(QWidget& its_view, const view_context& its_context, const QString& file_name,
                             std::function<QWidget*()> shown)
    : QObject(&its_view), view(its_view), context(its_context), name(file_name), what(std::move(shown)) {}

QImage picture_saver::picture() const {
    QWidget& shown = *what();
    const double ratio = std::max(least_ratio, shown.devicePixelRatioF());
    QImage image(shown.size() * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(context.frame.look().card);
    shown.render(&image, {}, {}, QWidget::DrawChildren);
    return image.convertToFormat(QImage::Format_RGB32);
}

void picture_saver::copy() {
    QGuiApplication::clipboard()->setImage(picture());
    Q_EMIT done(QStringLiteral("The picture is on the clipboard."));
}

void picture_saver::save() {
    QFileDialog* dialog = dialog_for_saving(view, QStringLiteral("Save the picture"),
                                            QStringLiteral("PNG pictures (*.png);;PDF documents (*.pdf)"),
                                            QStringLiteral("png"), context.core.paths.documents, name);
    connect(dialog, &QFileDialog::filterSelected, dialog, [dialog](const QString& filter) {
        dialog->setDefaultSuffix(filter.contains(pdf) ? QStringLiteral("pdf") : QStringLiteral("png"));
    });
    connect(dialog, &QFileDialog::fileSelected, this, &picture_saver::save_to);
    dialog->open();
}

void picture_saver::save_to(const QString& file) {
    whole_file target(file);
    QString problem;
    if (!target.begin()) {
        problem = target.errorString();
    } else if (file.endsWith(pdf, Qt::CaseInsensitive)) {
        QPdfWriter page(&target);
        paint_page(page);
    } else {
        QImageWriter writer(&target, "png");
        if (!writer.write(picture()))
            problem = writer.errorString();
    }
    if (problem.isEmpty() && !target.commit())
        problem = target.errorString();
    if (!problem.isEmpty())
        return Q_EMIT failed(cannot_be_written(file, problem));
    Q_EMIT done(QStringLiteral("The picture is in %1.").arg(QDir::toNativeSeparators(file)));
}

void picture_saver::print() {
    ask_for_printer(view, name, [this](QPrinter& chosen) { paint_page(chosen); });
}

void picture_saver::paint_page(QPagedPaintDevice& page) const {
    const QImage image = picture();
    page.setPageMargins(QMarginsF(page_margin, page_margin, page_margin, page_margin),
                        QPageLayout::Millimeter);
    page.setPageOrientation(image.width() > image.height() ? QPageLayout::Landscape : QPageLayout::Portrait);
    QPainter painter(&page);
    const QSizeF room(page.width(), page.height());
    const QSizeF size = QSizeF(image.size()).scaled(room, Qt::KeepAspectRatio);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(QPointF((room.width() - size.width()) / 2, 0), size), image);
}

} // namespace brivant
