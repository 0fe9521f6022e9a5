#include "platform/x11/X11Prompts.h"

#include <QGuiApplication>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include "platform/x11/Pictures.h"

namespace nevo {

namespace {

class X11Prompt : public Prompt {
public:
    explicit X11Prompt(QDialog* made) : dialog(made) {}
    /// Later: the call may come from one of its buttons.
    ~X11Prompt() override {
        dialog->hide();
        dialog->deleteLater();
    }
    X11Prompt(const X11Prompt&) = delete;
    X11Prompt& operator=(const X11Prompt&) = delete;

    bool isVisible() const override { return dialog->isVisible(); }
    void bringToFront() override {
        dialog->show();
        dialog->raise();
        dialog->activateWindow();
    }

private:
    QDialog* dialog;
};

QLabel* label(const PromptText& line) {
    auto* result = new QLabel(QString::fromStdString(line.text));
    result->setTextFormat(Qt::PlainText);
    result->setWordWrap(true);
    result->setAlignment(Qt::AlignHCenter);
    QFont font = result->font();
    font.setPixelSize(static_cast<int>(line.size));
    result->setFont(font);
    return result;
}

QLabel* symbol(const Images& images, const PromptContent& content) {
    auto* result = new QLabel;
    result->setAlignment(Qt::AlignCenter);
    int size = static_cast<int>(content.symbolSize);
    result->setMinimumHeight(size);
    if (auto image = images.systemSymbol(content.symbol, {})) {
        QColor color = result->palette().color(QPalette::WindowText);
        result->setPixmap(QPixmap::fromImage(rendered(*image, {size, size}, color)));
    }
    return result;
}

}  // namespace

std::unique_ptr<Prompt> X11Prompts::create(PromptContent content) {
    auto* dialog = new QDialog;
    dialog->setWindowTitle(QString::fromStdString(content.windowTitle));
    dialog->setFixedSize(static_cast<int>(content.size.width),
                         static_cast<int>(content.size.height));
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        dialog->move(screen->availableGeometry().center() - dialog->rect().center());
    }
    auto* column = new QVBoxLayout(dialog);
    column->addStretch();
    column->addWidget(symbol(images, content));
    for (const PromptText& line : content.texts) column->addWidget(label(line));
    column->addStretch();
    auto* row = new QHBoxLayout;
    column->addLayout(row);
    for (const PromptButton& button : content.buttons) {
        auto* made = new QPushButton(QString::fromStdString(button.title));
        row->addWidget(made);
        QObject::connect(made, &QPushButton::clicked, dialog, [action = button.action] {
            if (action) action();
        });
    }
    return std::make_unique<X11Prompt>(dialog);
}

bool X11ChildProcesses::launch(const std::string& executable,
                               const std::vector<std::string>& arguments) {
    QStringList list;
    for (const std::string& argument : arguments) list << QString::fromStdString(argument);
    return QProcess::startDetached(QString::fromStdString(executable), list);
}

}  // namespace nevo
