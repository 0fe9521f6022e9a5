#include "platform/x11/X11Images.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cctype>
#include <cmath>

#include "platform/x11/Pictures.h"

namespace nevo {

namespace {

/// While a picture is read, and as it is held at four bytes a pixel: four times the largest icon
/// there is, since what is held is also copied.
constexpr int mostMegabytes = 64;
constexpr qint64 mostPixels = 2048 * 2048;
/// A point of a picture that is made here holds as many pixels across: enough for every scale.
constexpr int pixelsAcrossPoint = 4;
constexpr int mostPixelsASide = 8192;
constexpr std::string_view brandPrefix = "Brand";

bool isTooLarge(QSize size) { return qint64{size.width()} * size.height() > mostPixels; }

std::optional<Image> draw(const QString& path) {
    QSvgRenderer renderer;
    if (!QFile::exists(path) || !renderer.load(path)) return std::nullopt;
    QSize size = renderer.defaultSize();
    QImage canvas(size * pixelsAcrossPoint, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    renderer.render(&painter);
    painter.end();
    Image image = fromQImage(canvas);
    image.size = {static_cast<double>(size.width()), static_cast<double>(size.height())};
    return image;
}

/// "BrandFoldLine" stands in the file "fold-line".
std::string brandFile(std::string_view name) {
    std::string file;
    for (char c : name.substr(brandPrefix.size())) {
        bool isUpper = std::isupper(static_cast<unsigned char>(c)) != 0;
        if (isUpper && !file.empty()) file += '-';
        file += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return ":/brand/" + file + ".svg";
}

}  // namespace

X11Images::X11Images() { QImageReader::setAllocationLimit(mostMegabytes); }

std::optional<Image> X11Images::decode(const Bytes& data) const {
    if (data.empty()) return std::nullopt;
    auto bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data.data()),
                                         static_cast<qsizetype>(data.size()));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    // A drawing of a few bytes may take a billion steps.
    if (reader.format().startsWith("svg")) return std::nullopt;
    // Its size is whatever its author wrote, and it is looked at before it takes memory.
    if (isTooLarge(reader.size())) return std::nullopt;
    QImage image = reader.read();
    if (image.isNull() || isTooLarge(image.size())) return std::nullopt;
    return fromQImage(image);
}

std::optional<Image> X11Images::drawing(const std::string& path, const std::string& source) const {
    auto found = drawings.find(path);
    if (found == drawings.end()) {
        auto image = draw(QString::fromStdString(path));
        if (!image) return std::nullopt;
        image->source = source;
        found = drawings.emplace(path, *image).first;
    }
    return found->second;
}

std::optional<Image> X11Images::named(const std::string& name) const {
    bool isPlain =
        std::all_of(name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) != 0; });
    if (!name.starts_with(brandPrefix) || !isPlain) return std::nullopt;
    return drawing(brandFile(name), "asset:" + name);
}

std::optional<Image> X11Images::systemSymbol(const std::string& name, const std::string&) const {
    if (name.empty() || name.find('/') != std::string::npos) return std::nullopt;
    auto image = drawing(":/symbols/" + name + ".svg", "symbol:" + name);
    if (image) image->isTemplate = true;
    return image;
}

Image X11Images::redrawn(const Image& image, Size size) const {
    auto pixelsOf = [](double points) {
        double pixels = std::ceil(points) * pixelsAcrossPoint;
        return static_cast<int>(std::clamp<double>(pixels, 0, mostPixelsASide));
    };
    QSize pixels(pixelsOf(size.width), pixelsOf(size.height));
    Image plain = image;
    plain.isTemplate = false;
    Image result = fromQImage(rendered(plain, pixels, {}));
    result.size = size;
    result.isTemplate = image.isTemplate;
    result.source = image.source;
    return result;
}

}  // namespace nevo
