#pragma once

#include "app/look/overlay.h"
#include "app/look/theme.h"

#include <QFrame>
#include <QLabel>
#include <QTextBrowser>
#include <QToolButton>

namespace brivant {

// A browser for the program's own HTML. It loads nothing but the program's artwork: no file, no address that
// the text names, and it follows no link.
class help_browser : public QTextBrowser {
    Q_OBJECT

public:
    explicit help_browser(QWidget* parent = nullptr);

    // Takes effect with the next text.
    void set_look(const theme& look);
    QVariant loadResource(int type, const QUrl& name) override;

protected:
    void doSetSource(const QUrl&, QTextDocument::ResourceType) override {}

private:
    theme colours;
};

// The help of a screen, over the right side of it.
class help_panel : public overlay {
    Q_OBJECT

public:
    explicit help_panel(QWidget* over);

    void show_help(const QString& title, const QString& html, const QString& icon, const theme& look);

protected:
    void place(const QRect& room) override;

private:
    QLabel icon_label;
    QLabel title_label;
    QToolButton close_button;
    help_browser browser;
};

} // namespace brivant
