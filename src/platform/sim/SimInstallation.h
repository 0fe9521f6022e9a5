#pragma once

#include <functional>
#include <map>
#include <optional>

#include "platform/Alerts.h"
#include "platform/ChildProcesses.h"
#include "platform/Files.h"
#include "platform/LoginItem.h"
#include "platform/Updates.h"
#include "platform/sim/SimFaults.h"
#include "platform/sim/SimTrace.h"

namespace nevo {

/// Answers that a script has laid out beforehand, one for each alert to come; without one the last
/// button is pressed.
class SimAlerts : public Alerts {
public:
    explicit SimAlerts(SimTrace& to) : trace(to) {}
    AlertAnswer run(const Alert& alert) override;

    void answerNext(AlertAnswer answer) { answers.push_back(answer); }

    /// Called while an alert is open, to turn the loop.
    std::function<void()> whileOpen;

private:
    SimTrace& trace;
    std::vector<AlertAnswer> answers;
};

/// A few files by path, and what the user chooses when asked for one.
class SimFiles : public Files {
public:
    SimFiles(SimFaults& script, SimTrace& to) : faults(script), trace(to) {}

    bool exists(const std::string& path) const override { return files.contains(path); }
    std::optional<Bytes> read(const std::string& path, std::size_t most) const override;
    std::string contentType(const std::string& path) const override;
    std::optional<std::string> moveToTrash(const std::string& path) override;
    std::optional<std::string> move(const std::string& from, const std::string& to) override;
    void choose(const std::vector<std::string>& contentTypes,
                std::function<void(std::optional<std::string>)> done) override;

    /// The type is told by the path's ending.
    void put(const std::string& path, Bytes bytes) { files[path] = std::move(bytes); }
    bool isChoosing() const { return static_cast<bool>(waiting); }
    /// Ends the choice; false when nobody waits for one.
    bool chosen(std::optional<std::string> path);

private:
    SimFaults& faults;
    SimTrace& trace;
    std::map<std::string, Bytes> files;
    std::function<void(std::optional<std::string>)> waiting;
};

class SimLoginItem : public LoginItem {
public:
    SimLoginItem(SimFaults& script, SimTrace& to) : faults(script), trace(to) {}
    bool isRegistered() const override { return registered; }
    std::optional<std::string> setRegistered(bool wanted) override;

private:
    SimFaults& faults;
    SimTrace& trace;
    bool registered = false;
};

/// Programs that this one has started.
class SimChildProcesses : public ChildProcesses {
public:
    SimChildProcesses(SimFaults& script, SimTrace& to) : faults(script), trace(to) {}

    std::optional<std::string> launch(const std::string& executable,
                                      const std::vector<std::string>& arguments) override;
    Result<int> run(const std::string& executable,
                    const std::vector<std::string>& arguments) override;

    /// The last one, as a shell would show it.
    const std::string& last() const { return lastLine; }
    /// What the programs to come end with.
    int exitStatus = 0;

private:
    bool note(const std::string& executable, const std::vector<std::string>& arguments);

    std::string lastLine;

    SimFaults& faults;
    SimTrace& trace;
};

/// An updater whose every word a script says.
class SimUpdaters : public Updaters {
public:
    explicit SimUpdaters(SimTrace& to) : trace(to) {}
    std::unique_ptr<Updater> create(UpdaterDelegate told) override;

    /// The installation is updated by somebody else, from the next start on.
    bool isManaged = false;
    bool canCheck = true;
    bool checksAutomatically = true;
    /// What the program is told; its members are empty while it has no updater.
    UpdaterDelegate delegate;

private:
    class SimUpdater;
    SimTrace& trace;
};

}  // namespace nevo
