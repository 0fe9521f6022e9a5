#include "platform/x11/X11Workspace.h"

#include <signal.h>
#include <unistd.h>

#include <QIcon>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>
#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "platform/x11/Pictures.h"
#include "platform/x11/ProgramName.h"

namespace nevo {

namespace {
constexpr int iconPixels = 32;
constexpr int handlerPatience = 2000;

bool isRunning(ProcessId pid) { return pid > 0 && (kill(pid, 0) == 0 || errno == EPERM); }

std::optional<Image> loadIcon(const std::string& name) {
    auto text = QString::fromStdString(name);
    QIcon icon = name.front() == '/' ? QIcon(text) : QIcon::fromTheme(text);
    QPixmap pixmap = icon.pixmap(iconPixels, iconPixels);
    if (pixmap.isNull()) return std::nullopt;
    Image image = fromQImage(pixmap.toImage());
    image.source = "icon:" + name;
    return image;
}
}  // namespace

X11Workspace::X11Workspace(BarClient& client, ClientWindows& clientWindows,
                           xcb::DesktopEntries& installed)
    : bar(client), clients(clientWindows), entries(installed) {}

// The bar's items are good until the next question to the server, so the windows are asked for
// first, and describing an item asks nothing.

std::vector<RunningApplication> X11Workspace::runningApplications() const {
    const auto& windows = clients.windows();
    std::vector<RunningApplication> result;
    auto isKnown = [&](ProcessId pid) {
        return std::any_of(result.begin(), result.end(),
                           [&](const RunningApplication& app) { return app.pid == pid; });
    };
    for (const BarItemInfo* item : bar.items()) {
        if (item->pid > 0 && !isKnown(item->pid)) result.push_back(describe(*item, windows));
    }
    for (const ClientWindowInfo& window : windows) {
        if (window.pid > 0 && !isKnown(window.pid)) result.push_back(describe(window));
    }
    return result;
}

template <typename ItemTest, typename WindowTest>
std::optional<RunningApplication> X11Workspace::first(ItemTest isItem, WindowTest isWindow) const {
    const auto& windows = clients.windows();
    for (const BarItemInfo* item : bar.items()) {
        if (isItem(*item)) return describe(*item, windows);
    }
    for (const ClientWindowInfo& window : windows) {
        if (isWindow(window)) return describe(window);
    }
    return std::nullopt;
}

std::optional<RunningApplication> X11Workspace::runningApplication(ProcessId pid) const {
    if (pid <= 0) return std::nullopt;
    return first([&](const BarItemInfo& item) { return item.pid == pid; },
                 [&](const ClientWindowInfo& window) { return window.pid == pid; });
}

std::optional<RunningApplication> X11Workspace::runningApplication(
    const std::string& bundleIdentifier) const {
    if (bundleIdentifier.empty()) return std::nullopt;
    return first([&](const BarItemInfo& item) { return item.appId == bundleIdentifier; },
                 [&](const ClientWindowInfo& window) {
                     return window.owner.applicationId == bundleIdentifier;
                 });
}

RunningApplication X11Workspace::describe(const BarItemInfo& item,
                                          const std::vector<ClientWindowInfo>& windows) const {
    RunningApplication app;
    app.pid = item.pid;
    app.bundleIdentifier = item.appId;
    if (!item.ownerName.empty()) app.localizedName = item.ownerName;
    app.icon = icon(item.appId);
    // A program with nothing but an item in the bar is no application with a place of its own, and
    // this one never is.
    bool hasWindow = item.pid != getpid() &&
                     std::any_of(windows.begin(), windows.end(),
                                 [&](const ClientWindowInfo& w) { return w.pid == item.pid; });
    app.activationPolicy = hasWindow ? ActivationPolicy::regular : ActivationPolicy::accessory;
    app.isTerminated = !isRunning(item.pid);
    return app;
}

RunningApplication X11Workspace::describe(const ClientWindowInfo& window) const {
    RunningApplication app;
    app.pid = window.pid;
    app.bundleIdentifier = window.owner.applicationId;
    app.localizedName = window.owner.name;
    app.icon = icon(window.owner.applicationId);
    app.isTerminated = !isRunning(window.pid);
    return app;
}

std::optional<Image> X11Workspace::icon(const std::string& appId) const {
    auto [known, isNew] = icons.try_emplace(appId);
    if (!isNew) return known->second;
    const auto* entry = entries.byId(appId);
    // Programs without a desktop file often have an icon of their own name.
    std::string name = entry && !entry->icon.empty() ? entry->icon : appId;
    if (!name.empty()) known->second = loadIcon(name);
    return known->second;
}

std::optional<RunningApplication> X11Workspace::frontmostApplication() const {
    ProcessId pid = frontPid ? frontPid() : 0;
    return pid > 0 ? runningApplication(pid) : std::nullopt;
}

bool X11Workspace::activate(ProcessId pid) { return clients.activate(pid) || isRunning(pid); }

std::optional<std::string> X11Workspace::applicationPath(
    const std::string& bundleIdentifier) const {
    const auto* entry = entries.byId(bundleIdentifier);
    if (entry == nullptr) return std::nullopt;
    return entry->file.string();
}

std::string X11Workspace::displayName(const std::string& path) const {
    std::filesystem::path file(path);
    const auto* entry = entries.byId(file.stem().string());
    bool isThisOne = entry != nullptr && entry->file == file && !entry->name.empty();
    return isThisOne ? entry->name : file.stem().string();
}

bool X11Workspace::openUrl(const std::string& text) {
    QUrl url(QString::fromStdString(text), QUrl::StrictMode);
    QString opener = QStandardPaths::findExecutable("xdg-open");
    if (!url.isValid() || url.scheme().isEmpty() || opener.isEmpty()) return false;
    // The opener itself only fails later, where nobody sees it.
    QProcess query;
    query.start("xdg-mime", {"query", "default", "x-scheme-handler/" + url.scheme()});
    bool isAnswered = query.waitForFinished(handlerPatience);
    if (!isAnswered || query.readAllStandardOutput().trimmed().isEmpty()) return false;
    return QProcess::startDetached(opener, {url.toString(QUrl::FullyEncoded)});
}

}  // namespace nevo
