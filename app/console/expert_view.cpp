#include "app/console/expert_view.h"

#include "app/screen/share_menu.h"

#include <QFontDatabase>
#include <QKeyEvent>

namespace {
constexpr int empty_icon_size = 32;
constexpr int empty_page = 0;
constexpr int text_page = 1;
} // namespace

expert_view::expert_view(const view_context& its_context)
    : screen_view(its_context, QStringLiteral("expertView")),
      toolies(context.core.state, context.core.defaults, context.core.db),
      console(context.core.state, context.delegate, toolies, context.window, context.core.clock,
              context.core.defaults, context.core.expert),
      command(part<QLineEdit>("command")), replyTxt(part<QPlainTextEdit>("replyTxt")),
      stack(part<QStackedWidget>("transcript_stack")), send_button(part<QPushButton>("send")),
      stop_button(part<QPushButton>("stop")), script_button(part<QPushButton>("script")),
      clear_button(part<QPushButton>("clear")), share_button(part<QPushButton>("share")),
      note(part<QLabel>("note")), progress(part<busy_bar>("progress")) {
    replyTxt.setMaximumBlockCount(transcript::most_lines);
    replyTxt.setUndoRedoEnabled(false);
    replyTxt.setFrameShape(QFrame::NoFrame);
    command.installEventFilter(this);
    connect(&command, &QLineEdit::returnPressed, this, &expert_view::clickSend);
    connect(&send_button, &QPushButton::clicked, this, &expert_view::clickSend);
    connect(&stop_button, &QPushButton::clicked, this, &expert_view::stop);
    connect(&script_button, &QPushButton::clicked, this, &expert_view::clickScript);
    connect(&context.delegate, &adapter_link::condition_changed, this, &expert_view::show_operation);
    connect(&clear_button, &QPushButton::clicked, this, [this] { console.clickClear(); });
    add_share_menu(share_button, context.frame,
                   {QStringLiteral("transcript"), QStringLiteral("transcript"),
                    [this] { return console.session().lines.as_text(); }});
    begin_at(command);
    console.load(); // last: a view that could not be made leaves the screen before it in force
}

expert_view::~expert_view() {
    console.operation_ended = nullptr;
}

void expert_view::clickSend() {
    command.setFocus(); // first: a question takes it
    console.handle_a_send(command.text());
}

void expert_view::clickScript() {
    if (console.is_running())
        return;
    auto* dialog = new script_dialog(*this, stored_script(context.core.defaults));
    connect(dialog, &script_dialog::accepted, this,
            [this](const QStringList& values) { console.start_script(values); });
    dialog->open();
}

void expert_view::stop() {
    if (console.is_running() || context.delegate.is_reconnecting())
        console.stop();
}

void expert_view::reload(const QString& list) {
    if (list == QLatin1String("transcript"))
        show_transcript();
    else if (list == QLatin1String("sent"))
        command.clear();
    else if (list == QLatin1String("operation"))
        show_operation();
}

// --- the transcript ----------------------------------------------------------------------------------------

void expert_view::show_transcript() {
    const transcript& lines = console.session().lines;
    if (lines.is_empty()) {
        replyTxt.clear();
        shown = lines.end();
    }
    QTextCursor end(replyTxt.document());
    end.movePosition(QTextCursor::End);
    end.beginEditBlock();
    bool is_first = shown <= lines.first();
    for (qint64 line = std::max(shown, lines.first()); line < lines.end(); ++line) {
        QTextCharFormat look;
        look.setForeground(lines.at(line).is_command ? context.frame.look().accent
                                                     : context.frame.look().text);
        look.setFontWeight(lines.at(line).is_command ? QFont::DemiBold : QFont::Normal);
        if (!is_first)
            end.insertBlock();
        is_first = false;
        end.insertText((lines.at(line).is_command ? QStringLiteral("> ") : QString()) + lines.at(line).text,
                       look);
    }
    end.endEditBlock();
    shown = lines.end();
    replyTxt.moveCursor(QTextCursor::End);
    replyTxt.moveCursor(QTextCursor::StartOfLine);
    stack.setCurrentIndex(lines.is_empty() ? empty_page : text_page);
    clear_button.setEnabled(!lines.is_empty());
    share_button.setEnabled(!lines.is_empty());
    show_operation();
}

void expert_view::show_anew() {
    replyTxt.clear();
    shown = console.session().lines.first();
    show_transcript();
}

void expert_view::show_operation() {
    const bool runs = console.is_running();
    const bool had_focus = runs ? send_button.hasFocus() || script_button.hasFocus() : stop_button.hasFocus();
    send_button.setVisible(!runs);
    stop_button.setVisible(runs || context.delegate.is_reconnecting());
    script_button.setEnabled(!runs);
    if (had_focus)
        (runs ? static_cast<QWidget&>(stop_button) : command).setFocus();
    if (!runs)
        note.clear();
    else if (console.is_script_running())
        note.setText(QStringLiteral("Script: %1 of %2 answered")
                         .arg(console.commands_answered())
                         .arg(console.commands_in_all()));
    else
        note.setText(QStringLiteral("Waiting for the answer"));
    progress.set_running(runs);
    progress.set_progress(console.commands_answered(),
                          runs && console.is_script_running() ? console.commands_in_all() : 0);
}

void expert_view::look_changed() {
    const theme& look = context.frame.look();
    part<QLabel>("empty_icon")
        .setPixmap(look.enlarged(QStringLiteral("obd_mode.png"), empty_icon_size, devicePixelRatioF()));
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fixed.setPointSizeF(font().pointSizeF() > 0 ? font().pointSizeF() : fixed.pointSizeF());
    replyTxt.setFont(fixed);
    command.setFont(fixed);
    show_anew();
}

bool expert_view::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &command && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        command_history& history = console.session().history;
        if (key == Qt::Key_Up || key == Qt::Key_Down) {
            command.setText(key == Qt::Key_Up ? history.older(command.text())
                                              : history.newer(command.text()));
            return true;
        }
    }
    return screen_view::eventFilter(watched, event);
}
