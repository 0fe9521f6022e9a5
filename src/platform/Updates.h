#pragma once

#include <functional>
#include <memory>
#include <string>

namespace nevo {

struct MenuItem;

/// What the updater tells of an update (`SUAppcastItem`).
struct UpdateItem {
    std::string displayVersionString;
    std::string versionString;
};

/// What the updater tells the program: `SPUUpdaterDelegate` and `SPUStandardUserDriverDelegate`.
struct UpdaterDelegate {
    std::function<void()> willShowModalAlert;
    std::function<void(bool handle, const UpdateItem&, bool userInitiated)> willHandleShowingUpdate;
    std::function<void()> willFinishUpdateSession;
    std::function<void(const UpdateItem&)> didFindValidUpdate;
    std::function<void(const std::string& error)> didAbort;
    /// `error` is empty without one.
    std::function<void(const std::string& error)> didFinishUpdateCycle;
};

/// A program that fetches and installs updates (`SPUStandardUpdaterController`).
class Updater {
public:
    virtual ~Updater() = default;
    virtual bool canCheckForUpdates() const = 0;
    /// `sender` is the menu row that asks; nullptr for another control.
    virtual void checkForUpdates(const MenuItem* sender) = 0;
    virtual bool automaticallyChecksForUpdates() const = 0;
    virtual void setAutomaticallyChecksForUpdates(bool checks) = 0;
};

class Updaters {
public:
    virtual ~Updaters() = default;
    /// Makes and starts the updater. nullptr where the installation is updated by somebody else,
    /// such as the system's packages.
    virtual std::unique_ptr<Updater> create(UpdaterDelegate delegate) = 0;
};

}  // namespace nevo
