#include "platform/x11/X11Application.h"

#include <fcntl.h>
#include <unistd.h>

#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QTimer>
#include <array>
#include <cerrno>
#include <csignal>

#include "platform/x11/ProgramName.h"

namespace nevo {

namespace {
constexpr std::array endingSignals{SIGTERM, SIGINT, SIGHUP};

/// The signal handler's way into the loop; -1 while there is none.
volatile std::sig_atomic_t signalSink = -1;

extern "C" void noteSignal(int) {
    int before = errno;
    char byte = 0;
    if (signalSink >= 0) {
        [[maybe_unused]] auto ignored = write(static_cast<int>(signalSink), &byte, 1);
    }
    errno = before;
}
}  // namespace

X11Application::X11Application(QApplication& application) : qt(application) {
    // What its own dialogs say, in the language of the session; English where there is no such
    // file.
    QString translations = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    if (dialogTexts.load(QLocale::system(), "qtbase", "_", translations))
        QApplication::installTranslator(&dialogTexts);
    if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0) return;
    signalSink = signalPipe[1];
    signalNotifier = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(signalNotifier.get(), &QSocketNotifier::activated, signalNotifier.get(),
                     [this] {
                         char bytes[16];
                         while (read(signalPipe[0], bytes, sizeof bytes) > 0) {
                         }
                         terminate();
                     });
    for (int number : endingSignals) std::signal(number, noteSignal);
    // A log pipe whose reader has gone must not end us.
    std::signal(SIGPIPE, SIG_IGN);
}

X11Application::~X11Application() {
    for (int number : endingSignals) std::signal(number, SIG_DFL);
    signalSink = -1;
    signalNotifier.reset();
    for (int end : signalPipe) {
        if (end >= 0) close(end);
    }
}

std::string X11Application::bundleIdentifier() const { return applicationId; }

ProcessId X11Application::processIdentifier() const { return getpid(); }

std::string X11Application::bundlePath() const {
    return QApplication::applicationFilePath().toStdString();
}

std::vector<std::string> X11Application::preferredLanguages() const {
    std::vector<std::string> tags;
    for (const QString& tag : QLocale::system().uiLanguages()) tags.push_back(tag.toStdString());
    return tags;
}

void X11Application::activate() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        bool takesFocus = !(widget->windowFlags() & Qt::WindowDoesNotAcceptFocus);
        if (!widget->isVisible() || !takesFocus) continue;
        widget->raise();
        widget->activateWindow();
    }
}

void X11Application::orderFrontStandardAboutPanel(const std::string& title,
                                                  const std::string& credits) {
    static constexpr const char* name = "about";
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() != name) continue;
        widget->raise();
        widget->activateWindow();
        return;
    }
    auto* box = new QMessageBox;
    box->setObjectName(name);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(QString::fromStdString(title));
    box->setText(QStringLiteral("<b>%1</b>&nbsp;&nbsp;%2").arg(programName, programVersion));
    box->setInformativeText(QString::fromStdString(credits));
    box->setStandardButtons(QMessageBox::Close);
    box->setModal(false);
    // The title has room in the frame.
    box->setStyleSheet("QLabel#qt_msgbox_informativelabel { min-width: 260px; }");
    box->show();
    box->raise();
    box->activateWindow();
}

void X11Application::terminate() {
    if (std::exchange(isTerminating, true)) return;
    if (willTerminate) willTerminate();
    // Ends nested loops as well, those of a menu or an alert.
    QApplication::exit(exitStatus);
}

void X11Application::displayLost() {
    exitStatus = 1;
    terminate();
}

int X11Application::run() {
    QTimer::singleShot(0, &qt, [this] {
        if (didFinishLaunching && !isTerminating) didFinishLaunching();
    });
    // A signal may have come before the loop could be left.
    if (isTerminating) return exitStatus;
    QApplication::exec();
    return exitStatus;
}

}  // namespace nevo
