#include "platform/sim/SimInstallation.h"

#include <algorithm>
#include <utility>

namespace nevo {

AlertAnswer SimAlerts::run(const Alert& alert) {
    if (whileOpen) whileOpen();
    AlertAnswer answer{alert.buttons.size() - 1, false};
    if (!answers.empty()) {
        answer = answers.front();
        answers.erase(answers.begin());
    }
    answer.button = std::min(answer.button, alert.buttons.size() - 1);
    trace.note("alert", alert.name + ": " + alert.buttons[answer.button] +
                            (answer.suppresses ? ", never again" : ""));
    return answer;
}

std::optional<Bytes> SimFiles::read(const std::string& path, std::size_t most) const {
    auto found = files.find(path);
    if (found == files.end() || found->second.size() > most) return std::nullopt;
    return found->second;
}

std::string SimFiles::contentType(const std::string& path) const {
    if (path.ends_with(".png")) return "image/png";
    if (path.ends_with(".icns")) return "image/x-icns";
    return path.ends_with(".txt") ? "text/plain" : "";
}

std::optional<std::string> SimFiles::moveToTrash(const std::string& path) {
    if (faults.strikes(SimOperation::trashFile)) return "The file couldn't be moved to the Trash.";
    files.erase(path);
    trace.note("files", path + " goes to the Trash");
    return std::nullopt;
}

std::optional<std::string> SimFiles::move(const std::string& from, const std::string& to) {
    if (faults.strikes(SimOperation::moveFile)) return "The file couldn't be moved.";
    auto moved = files.extract(from);
    files[to] = moved ? std::move(moved.mapped()) : Bytes{};
    trace.note("files", from + " is now " + to);
    return std::nullopt;
}

void SimFiles::choose(const std::vector<std::string>&,
                      std::function<void(std::optional<std::string>)> done) {
    waiting = std::move(done);
    trace.note("files", "a file is to be chosen");
}

bool SimFiles::chosen(std::optional<std::string> path) {
    if (!waiting) return false;
    std::exchange(waiting, nullptr)(std::move(path));
    return true;
}

std::optional<std::string> SimLoginItem::setRegistered(bool wanted) {
    if (faults.strikes(SimOperation::loginItem)) return "The operation isn't permitted.";
    registered = wanted;
    trace.note("login-item", wanted ? "registered" : "unregistered");
    return std::nullopt;
}

bool SimChildProcesses::note(const std::string& executable,
                             const std::vector<std::string>& arguments) {
    if (faults.strikes(SimOperation::childProcess)) return false;
    std::string line = executable;
    for (const std::string& argument : arguments) line += " '" + argument + "'";
    trace.note("run", line);
    lastLine = line;
    return true;
}

std::optional<std::string> SimChildProcesses::launch(const std::string& executable,
                                                     const std::vector<std::string>& arguments) {
    if (note(executable, arguments)) return std::nullopt;
    return "The file doesn't exist.";
}

Result<int> SimChildProcesses::run(const std::string& executable,
                                   const std::vector<std::string>& arguments) {
    if (note(executable, arguments)) return {exitStatus, {}};
    return {std::nullopt, "The file doesn't exist."};
}

class SimUpdaters::SimUpdater : public Updater {
public:
    explicit SimUpdater(SimUpdaters& all) : owner(all) {}
    ~SimUpdater() override { owner.delegate = {}; }
    SimUpdater(const SimUpdater&) = delete;
    SimUpdater& operator=(const SimUpdater&) = delete;

    bool canCheckForUpdates() const override { return owner.canCheck; }
    void checkForUpdates(const MenuItem*) override {
        owner.trace.note("updater", "looks for updates");
    }
    bool automaticallyChecksForUpdates() const override { return owner.checksAutomatically; }
    void setAutomaticallyChecksForUpdates(bool checks) override {
        owner.checksAutomatically = checks;
        owner.trace.note("updater", checks ? "looks by itself" : "looks when it is asked");
    }

private:
    SimUpdaters& owner;
};

std::unique_ptr<Updater> SimUpdaters::create(UpdaterDelegate told) {
    if (isManaged) return nullptr;
    delegate = std::move(told);
    trace.note("updater", "started");
    return std::make_unique<SimUpdater>(*this);
}

}  // namespace nevo
