#include <QDragEnterEvent>
#include <QMimeData>
#include <QUrl>
#include <QVBoxLayout>

#include "platform/x11/CardButton.h"
#include "platform/x11/ControlParts.h"
#include "platform/x11/ControlViews.h"

namespace nevo {

namespace {

constexpr double pictureHeight = 32;

/// The path of the first file of this machine in what is dragged; empty if there is none.
std::string fileOf(const QMimeData& data) {
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) return url.toLocalFile().toStdString();
    }
    return {};
}

class DropButton : public CardButton {
public:
    DropButton() {
        setAcceptDrops(true);
        setDashed(true);
    }
    std::function<void(const std::string&)> dropped;

protected:
    void dragEnterEvent(QDragEnterEvent* event) override {
        if (fileOf(*event->mimeData()).empty()) return;
        event->setDropAction(Qt::CopyAction);
        event->accept();
        setDown(true);
    }
    void dragLeaveEvent(QDragLeaveEvent*) override { setDown(false); }
    void dropEvent(QDropEvent* event) override {
        setDown(false);
        // Never a move: the giver would delete its file.
        event->setDropAction(Qt::CopyAction);
        event->accept();
        std::string path = fileOf(*event->mimeData());
        if (auto call = dropped; call && !path.empty()) call(path);
    }
};

class DropZoneView : public ControlView {
public:
    explicit DropZoneView(const Images& pictures)
        : ControlView(pictures, new DropButton),
          button(static_cast<DropButton*>(&widget())),
          picture(new PictureBox),
          title(new TextLabel),
          detail(new TextLabel) {
        auto* column = new QVBoxLayout(button);
        column->setContentsMargins(16, 16, 16, 16);
        column->addWidget(picture, 0, Qt::AlignHCenter);
        for (TextLabel* label : {title, detail}) {
            column->addWidget(label);
            label->setAlignment(Qt::AlignHCenter);
        }
        button->dropped = [this](const std::string& path) { tell(control().takeFile, path); };
        QObject::connect(button, &QPushButton::clicked, &context,
                         [this] { tell(control().press); });
    }
    ~DropZoneView() override { button->dropped = nullptr; }

    void appendOperable(std::vector<QWidget*>& list) const override {
        if (control().press) list.push_back(button);
    }

protected:
    void present() override {
        describe(*button, control());
        button->setFocusPolicy(control().press ? Qt::StrongFocus : Qt::NoFocus);
        auto image = control().image;
        if (!image && !control().symbol.empty()) image = images.systemSymbol(control().symbol, {});
        picture->showPicture(image, pictureHeight);
        title->showText(control().hidesTitle ? std::string() : control().title,
                        Control::TextStyle::body);
        detail->showText(control().detail, Control::TextStyle::note);
    }

private:
    DropButton* button;
    PictureBox* picture;
    TextLabel* title;
    TextLabel* detail;
};

}  // namespace

std::unique_ptr<ControlView> makeDropZoneView(const Images& images) {
    return std::make_unique<DropZoneView>(images);
}

}  // namespace nevo
