#pragma once

#include <QUiLoader>
#include <QWidget>
#include <stdexcept>

// A view description that cannot be shown; what() is a sentence for the person.
class broken_view : public std::runtime_error {
public:
    explicit broken_view(const QString& reason) : std::runtime_error(reason.toStdString()) {}
};

// Makes the widgets of the view descriptions ("NAME.ui", as Qt Designer writes them) at run time.
class view_loader : private QUiLoader {
public:
    // `folder`: where the descriptions are; the compiled-in ones are in ":/views".
    explicit view_loader(const QString& folder);

    // The widget of the description, owned by `parent`. Throws broken_view when there is none or it is
    // damaged.
    QWidget* load_view(const QString& name, QWidget* parent);

protected:
    // The descriptions may also name the widgets of this program.
    QWidget* createWidget(const QString& class_name, QWidget* parent, const QString& name) override;

private:
    QString folder;
};

// The part of a view with that name. Throws broken_view when it is missing or of another kind.
template <class T>
T& part_of(QWidget& view, const char* name) {
    if (T* part = view.findChild<T*>(QLatin1String(name)))
        return *part;
    throw broken_view(
        QStringLiteral("The description of the screen has no part %1.").arg(QLatin1String(name)));
}
