#pragma once

#include <QApplication>
#include <QSocketNotifier>
#include <QTranslator>
#include <memory>

#include "platform/Application.h"

namespace nevo {

/// This program: Qt's application, ended also by the signals that ask for it.
class X11Application : public Application {
public:
    explicit X11Application(QApplication& application);
    ~X11Application() override;

    std::string bundleIdentifier() const override;
    ProcessId processIdentifier() const override;
    std::string bundlePath() const override;
    /// Wherever a package has put it, it is in place.
    std::string applicationsFolder() const override { return "/"; }
    /// There is no such dictionary here.
    std::optional<std::string> informationText(const std::string&) const override {
        return std::nullopt;
    }
    std::vector<std::string> preferredLanguages() const override;
    void setActivationPolicy(ActivationPolicy newPolicy) override { policy = newPolicy; }
    ActivationPolicy activationPolicy() const override { return policy; }
    void activate() override;
    void orderFrontStandardAboutPanel(const std::string& title,
                                      const std::string& credits) override;
    void terminate() override;

    /// Calls the delegate and runs until the end; the exit status.
    int run();
    /// Ends the program because the display has gone.
    void displayLost();

private:
    QApplication& qt;
    QTranslator dialogTexts;
    ActivationPolicy policy = ActivationPolicy::accessory;
    bool isTerminating = false;
    int exitStatus = 0;
    int signalPipe[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> signalNotifier;
};

}  // namespace nevo
