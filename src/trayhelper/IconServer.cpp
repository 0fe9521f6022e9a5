#include "trayhelper/IconServer.h"

#include <QFile>
#include <QGuiApplication>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

#include "trayhelper/IconLookup.h"
#include "trayhelper/Limits.h"
#include "trayhelper/Picture.h"

namespace nevo::trayhelper {

namespace {

constexpr int mostMegabytes = 512;
constexpr int mostSecondsOfAnIcon = 2;
constexpr int smallestSide = 8;
constexpr int largestSide = 256;
/// Two paths and some more.
constexpr std::size_t longestLine = 3 * 4096;
/// For icons that are a shape only: the colour of the bar's text.
constexpr QColor shapeColor{255, 255, 255};

constexpr int exitUnread = 1;
constexpr int exitMalformed = 2;

struct Request {
    std::uint64_t id = 0;
    int side = 0;
    QString folder;
    QString name;
};

template <class Number>
bool parse(std::string_view text, Number& number) {
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

QString pathOf(std::string_view text) {
    return QFile::decodeName(QByteArray(text.data(), static_cast<qsizetype>(text.size())));
}

std::optional<Request> parseRequest(std::string_view line) {
    std::size_t space = line.find(' ');
    std::size_t first = line.find('\t');
    std::size_t second = first == line.npos ? line.npos : line.find('\t', first + 1);
    if (second == line.npos || space > first) return std::nullopt;
    Request request;
    if (!parse(line.substr(0, space), request.id)) return std::nullopt;
    if (!parse(line.substr(space + 1, first - space - 1), request.side)) return std::nullopt;
    if (request.side < smallestSide || request.side > largestSide) return std::nullopt;
    request.folder = pathOf(line.substr(first + 1, second - first - 1));
    request.name = pathOf(line.substr(second + 1));
    return request;
}

QImage pictureOf(const Request& request) {
    ComputingLimit limit(mostSecondsOfAnIcon);
    FoundIcon found = lookUpIcon(request.name, request.folder, request.side);
    return found.isSymbolic ? recoloured(found.picture, shapeColor) : found.picture;
}

/// False when it can't be written.
bool answer(const Request& request, const QImage& picture) {
    std::string header = std::to_string(request.id) + ' ' + std::to_string(picture.width()) + ' ' +
                         std::to_string(picture.height()) + '\n';
    auto size = static_cast<std::size_t>(picture.sizeInBytes());
    return std::fwrite(header.data(), 1, header.size(), stdout) == header.size() &&
           std::fwrite(picture.constBits(), 1, size, stdout) == size && std::fflush(stdout) == 0;
}

/// What Qt's libraries say of broken pictures would fill the bar's log.
void dropWarnings(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtFatalMsg) std::fprintf(stderr, "nevo-menubar-helper: %s\n", qPrintable(text));
}

int malformed() {
    std::fputs("nevo-menubar-helper: A line isn't \"ID SIZE<TAB>FOLDER<TAB>NAME\".\n", stderr);
    return exitMalformed;
}

int serve() {
    std::array<char, longestLine> line;
    while (std::cin.getline(line.data(), line.size())) {
        auto length = std::char_traits<char>::length(line.data());
        auto request = parseRequest({line.data(), length});
        if (!request) return malformed();
        if (!answer(*request, pictureOf(*request))) return exitUnread;
    }
    // Longer than any request is, or the end of the input.
    return std::cin.eof() ? 0 : malformed();
}

}  // namespace

int serveIcons() {
    limitMemory(mostMegabytes);
    limitPictureMemory();
    qInstallMessageHandler(dropWarnings);
    // A theme of the desktop's own would open the display.
    qunsetenv("QT_QPA_PLATFORMTHEME");
    qputenv("QT_QPA_OFFSCREEN_NO_GLX", "1");
    std::string program = "nevo-menubar-helper";
    std::string option = "-platform";
    std::string platform = "offscreen";
    std::array<char*, 4> words{program.data(), option.data(), platform.data(), nullptr};
    int count = 3;
    QGuiApplication application(count, words.data());
    useDesktopIconTheme();
    return serve();
}

}  // namespace nevo::trayhelper
