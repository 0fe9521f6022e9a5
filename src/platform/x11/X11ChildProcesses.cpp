#include "platform/x11/X11ChildProcesses.h"

#include <QProcess>

namespace nevo {

namespace {

constexpr int patienceMilliseconds = 30000;

QStringList listOf(const std::vector<std::string>& arguments) {
    QStringList list;
    for (const std::string& argument : arguments) list << QString::fromStdString(argument);
    return list;
}

}  // namespace

std::optional<std::string> X11ChildProcesses::launch(const std::string& executable,
                                                     const std::vector<std::string>& arguments) {
    if (QProcess::startDetached(QString::fromStdString(executable), listOf(arguments)))
        return std::nullopt;
    return executable + " can't be started.";
}

Result<int> X11ChildProcesses::run(const std::string& executable,
                                   const std::vector<std::string>& arguments) {
    QProcess process;
    process.start(QString::fromStdString(executable), listOf(arguments));
    if (!process.waitForStarted() || !process.waitForFinished(patienceMilliseconds))
        return {std::nullopt, process.errorString().toStdString()};
    return {process.exitCode(), {}};
}

}  // namespace nevo
