#include "platform/x11/X11Popover.h"

#include <QGuiApplication>
#include <QLabel>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/x11/Panel.h"
#include "platform/x11/Pictures.h"
#include "platform/x11/QtScale.h"
#include "platform/x11/X11Menus.h"

namespace nevo {

namespace {

constexpr int margin = 16;
constexpr int symbolSize = 20;

QLabel* label(const std::string& text, int weight, double opacity) {
    auto* result = new QLabel(QString::fromStdString(text));
    result->setTextFormat(Qt::PlainText);
    result->setWordWrap(true);
    QFont font = result->font();
    font.setWeight(static_cast<QFont::Weight>(weight));
    result->setFont(font);
    QPalette palette = result->palette();
    QColor color = palette.color(QPalette::WindowText);
    color.setAlphaF(static_cast<float>(opacity));
    palette.setColor(QPalette::WindowText, color);
    result->setPalette(palette);
    return result;
}

/// A symbol in a column of its own, title and description beside it.
QLayout* helpRow(const Images& images, const PopoverRow& row) {
    auto* result = new QHBoxLayout;
    result->setSpacing(10);
    auto* symbol = new QLabel;
    symbol->setFixedWidth(symbolSize);
    symbol->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
    if (auto image = images.systemSymbol(row.symbol, {})) {
        QColor color = symbol->palette().color(QPalette::WindowText);
        symbol->setPixmap(
            QPixmap::fromImage(rendered(*image, {symbolSize - 2, symbolSize - 2}, color)));
    }
    result->addWidget(symbol);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(label(row.title, QFont::DemiBold, 1.0));
    if (!row.description.empty()) texts->addWidget(label(row.description, QFont::Normal, 0.65));
    result->addLayout(texts, 1);
    return result;
}

}  // namespace

X11Popover::X11Popover(XServer& x, BarClient& client, const Images& pictures,
                       const Compositor& manager)
    : server(x), bar(client), images(pictures), compositor(manager) {}

X11Popover::~X11Popover() { delete panel; }

bool X11Popover::isShown() const { return panel && panel->isVisible(); }

void X11Popover::performClose() {
    if (panel) panel->close();
}

void X11Popover::show(Rect, StatusItemButton& button, int) {
    delete panel;
    panel = build();
    Point left = hangingPlace(server, bar, button, 0);
    Point place = hangingPlace(server, bar, button, size.width * QtScale::at(left).factor);
    QPoint at = QtScale::at(left).fromRoot(place) + QPoint(0, 4);
    if (const QScreen* screen = QGuiApplication::screenAt(at)) {
        // Never over the edge of the screen.
        int right = screen->geometry().right() - panel->width() - 4;
        at.setX(std::max(screen->geometry().left() + 4, std::min(at.x(), right)));
    }
    panel->move(at);
    panel->show();
}

QFrame* X11Popover::build() const {
    auto* frame = new QFrame(nullptr, Qt::Popup);
    frame->setObjectName("popover");
    frame->setAttribute(Qt::WA_DeleteOnClose);
    stylePanel(*frame, "QFrame#popover", compositor.isRunning());
    frame->setFixedSize(static_cast<int>(size.width), static_cast<int>(size.height));
    auto* column = new QVBoxLayout(frame);
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(12);
    auto rows = content ? content() : std::vector<PopoverRow>{};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i == 0) {
            column->addWidget(label(rows[i].title, QFont::Bold, 1.0));
        } else {
            column->addLayout(helpRow(images, rows[i]));
        }
    }
    column->addStretch(1);
    return frame;
}

}  // namespace nevo
