#pragma once

#include <QFileSystemWatcher>
#include <QTimer>
#include <set>

#include "platform/LogOutput.h"
#include "platform/NotificationCenter.h"
#include "platform/RunLoop.h"
#include "platform/UserDefaults.h"
#include "platform/store/DomainFile.h"

namespace nevo {

/// A domain in its file, with what couldn't be written yet on top.
class FileDomain : public DefaultsDomain {
public:
    FileDomain(std::filesystem::path path, LogOutput& output);

    std::optional<DefaultsValue> object(const std::string& key) const override;
    void set(const std::string& key, DefaultsValue value) override;
    void remove(const std::string& key) override;
    std::vector<std::string> keys() const override;
    bool synchronize() override;

protected:
    /// After a change in memory. Writes it through.
    virtual void changed() { write(); }
    bool write();
    bool reload();
    bool hasUnwritten() const { return !unwritten.empty(); }
    bool hasForeignChange() const { return file.hasForeignChange(); }
    const std::filesystem::path& path() const { return file.path(); }

private:
    /// Logs what went wrong; `isWell` when the file was read or written all the same.
    void report(bool isWell);

    LogOutput& log;
    DomainFile file;
    DomainFile::Changes unwritten;
    std::set<std::string> toldProblems;
};

/// This program's own domain: written once a turn of the loop, watched for what others write.
class OwnDomain : public FileDomain {
public:
    OwnDomain(std::filesystem::path path, LogOutput& output, RunLoop& runLoop,
              NotificationCenter& center);
    ~OwnDomain() override;

    bool synchronize() override;
    /// Has the file hold all that was set.
    void flush();

protected:
    void changed() override;

private:
    void watch();
    void reloadAndTell();

    RunLoop& loop;
    NotificationCenter& notifications;
    QFileSystemWatcher watcher;
    QTimer settled;
    bool writeScheduled = false;
    std::shared_ptr<int> life = std::make_shared<int>(0);
};

class X11Defaults : public UserDefaults {
public:
    X11Defaults(LogOutput& output, RunLoop& runLoop, NotificationCenter& center);
    OwnDomain& standard() override { return own; }
    std::unique_ptr<DefaultsDomain> suite(const std::string& name) override;

private:
    LogOutput& log;
    OwnDomain own;
};

}  // namespace nevo
