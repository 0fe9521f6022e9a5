#include "statusnotifier/Item.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <utility>

namespace nevo::statusnotifier {

namespace {
constexpr const char* interface = "org.kde.StatusNotifierItem";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr const char* busName = "org.freedesktop.DBus";
constexpr int mostTimesMissing = 4;
/// For all that an item says at once, microseconds; what is asked for singly may take longer.
constexpr std::uint64_t wholeAnswerTime = 3'000'000;
/// The time that a busy program gets doubles each time, up to 48 s.
constexpr int mostDoublings = 4;
/// A wheel's step, in the eighths of a degree that this protocol's programs reckon with.
constexpr int wheelStep = 120;
/// Those whose items stand below this path count steps.
constexpr std::string_view stepCounters = "/org/ayatana/";

/// What a signal says is new.
struct News {
    std::string_view signal;
    std::array<const char*, 2> properties;
};
constexpr std::array<News, 8> allNews{
    {{"NewIcon", {"IconName", "IconPixmap"}},
     {"NewAttentionIcon", {"AttentionIconName", "AttentionIconPixmap"}},
     {"NewOverlayIcon", {"OverlayIconName", "OverlayIconPixmap"}},
     {"NewIconThemePath", {"IconThemePath", nullptr}},
     {"NewTitle", {"Title", nullptr}},
     {"NewToolTip", {"ToolTip", nullptr}},
     {"NewStatus", {"Status", nullptr}},
     {"NewMenu", {"Menu", nullptr}}}};

/// The object, or what was asked of it, doesn't exist; other errors may pass.
bool isUnknown(sd_bus_message* answer) {
    for (const char* name :
         {SD_BUS_ERROR_UNKNOWN_OBJECT, SD_BUS_ERROR_UNKNOWN_INTERFACE, SD_BUS_ERROR_UNKNOWN_METHOD,
          SD_BUS_ERROR_SERVICE_UNKNOWN, SD_BUS_ERROR_NAME_HAS_NO_OWNER}) {
        if (sd_bus_message_is_method_error(answer, name) > 0) return true;
    }
    return false;
}

bool isOwnerGone(sd_bus_message* answer) {
    return sd_bus_message_is_method_error(answer, SD_BUS_ERROR_SERVICE_UNKNOWN) > 0 ||
           sd_bus_message_is_method_error(answer, SD_BUS_ERROR_NAME_HAS_NO_OWNER) > 0;
}

bool isLate(sd_bus_message* answer) {
    return sd_bus_message_is_method_error(answer, SD_BUS_ERROR_NO_REPLY) > 0 ||
           sd_bus_message_is_method_error(answer, SD_BUS_ERROR_TIMEOUT) > 0;
}

bool isIconNamed(const std::string& property, const ItemProperties& properties) {
    return (property == "IconName" && !properties.icon.name.empty()) ||
           (property == "AttentionIconName" && !properties.attentionIcon.name.empty()) ||
           (property == "OverlayIconName" && !properties.overlayIcon.name.empty());
}

bool isError(sd_bus_message* answer) { return sd_bus_message_is_method_error(answer, nullptr) > 0; }
}  // namespace

Item::Item(SessionBus& of, ItemAddress place, int pictureSide, Events told)
    : bus(of), where(std::move(place)), side(pictureSide), events(std::move(told)) {
    subscribe();
    askForAll();
    askForProcess();
}

void Item::subscribe() {
    sd_bus_slot* slot = nullptr;
    sd_bus_match_signal_async(bus.get(), &slot, where.owner.c_str(), where.path.c_str(), interface,
                              nullptr, onSignal, ignoreAnswer, this);
    signals.reset(std::exchange(slot, nullptr));
    std::string rule = ruleOfBusSignal("NameOwnerChanged", where.owner);
    sd_bus_add_match_async(bus.get(), &slot, rule.c_str(), onOwnerChanged, ignoreAnswer, this);
    ownerChanges.reset(slot);
}

void Item::askForAll() {
    sd_bus_message* call = nullptr;
    sd_bus_message_new_method_call(bus.get(), &call, where.owner.c_str(), where.path.c_str(),
                                   propertiesInterface, "GetAll");
    Message held(call);
    if (!held || sd_bus_message_append(call, "s", interface) < 0) return;
    sd_bus_slot* slot = nullptr;
    isAsking = sd_bus_call_async(bus.get(), &slot, call, onAll, this, wholeAnswerTime) >= 0;
    firstAnswer.reset(slot);
}

/// One property that is too large, or that its program takes long for, isn't to cost the others.
void Item::askSingly() {
    asksSingly = true;
    for (const char* name : {"Id", "Title", "Status", "IconThemePath", "Menu", "ItemIsMenu"}) {
        staleProperties.insert(name);
    }
    for (const char* signal : {"NewIcon", "NewAttentionIcon", "NewOverlayIcon", "NewToolTip"}) {
        noteSignal(signal);
    }
}

void Item::askForProcess() {
    sd_bus_slot* slot = nullptr;
    sd_bus_call_method_async(bus.get(), &slot, busName, "/org/freedesktop/DBus", busName,
                             "GetConnectionUnixProcessID", onProcess, this, "s",
                             where.owner.c_str());
    processAnswer.reset(slot);
}

int Item::onAll(sd_bus_message* answer, void* data, sd_bus_error*) {
    auto& item = *static_cast<Item*>(data);
    item.isAsking = false;
    if (isUnknown(answer)) {
        bool isPatient = !isOwnerGone(answer) && ++item.timesMissing < mostTimesMissing;
        if (!isPatient) item.events.gone(item);
        return 0;
    }
    item.timesMissing = 0;
    if (isError(answer)) {
        item.askSingly();
        return 0;
    }
    readAllProperties(answer, item.side, item.shown);
    item.hasAnswered = true;
    item.tell();
    return 0;
}

int Item::onProcess(sd_bus_message* answer, void* data, sd_bus_error*) {
    auto& item = *static_cast<Item*>(data);
    std::uint32_t number = 0;
    if (!isError(answer) && sd_bus_message_read_basic(answer, 'u', &number) > 0) {
        item.process = static_cast<ProcessId>(number);
    }
    item.knowsProcess = true;
    item.tell();
    return 0;
}

void Item::tell() {
    if (isKnown()) events.changed(*this);
}

int Item::onSignal(sd_bus_message* message, void* data, sd_bus_error*) {
    static_cast<Item*>(data)->noteSignal(sd_bus_message_get_member(message));
    return 0;
}

void Item::noteSignal(const char* member) {
    for (const News& news : allNews) {
        if (news.signal != member) continue;
        for (const char* property : news.properties) {
            if (property != nullptr) staleProperties.insert(property);
        }
    }
}

int Item::onOwnerChanged(sd_bus_message* message, void* data, sd_bus_error*) {
    auto& item = *static_cast<Item*>(data);
    auto owner = ownerNow(message);
    if (owner && owner->empty()) item.events.gone(item);
    return 0;
}

void Item::refresh() {
    if (std::exchange(isWholeStale, false)) {
        askForAll();
        return;
    }
    for (const std::string& name : std::exchange(staleProperties, {})) {
        Read& read = reads.emplace_back(Read{this, name, nullptr});
        sd_bus_message* call = nullptr;
        sd_bus_message_new_method_call(bus.get(), &call, where.owner.c_str(), where.path.c_str(),
                                       propertiesInterface, "Get");
        Message held(call);
        sd_bus_slot* slot = nullptr;
        int error = held ? sd_bus_message_append(call, "ss", interface, name.c_str()) : -ENOMEM;
        // Of an item that is shown, news that don't come mustn't hold up the next.
        auto doublings = std::min(timesLate, mostDoublings);
        std::uint64_t patience = hasAnswered ? wholeAnswerTime << doublings : 0;
        if (error >= 0) error = sd_bus_call_async(bus.get(), &slot, call, onRead, &read, patience);
        read.slot.reset(slot);
        if (error < 0) reads.pop_back();
    }
}

int Item::onRead(sd_bus_message* answer, void* data, sd_bus_error*) {
    auto& read = *static_cast<Read*>(data);
    read.item->finishRead(read, answer);
    return 0;
}

/// Told once for all that was asked together, so that no half of a change is seen; but of an item
/// with a part that is never answered, what there is.
void Item::finishRead(Read& read, sd_bus_message* answer) {
    // The object has gone, though its program hasn't.
    if (sd_bus_message_is_method_error(answer, SD_BUS_ERROR_UNKNOWN_OBJECT) > 0) outdate();
    // Busy, it may say nothing more of what it has said to be new.
    timesLate = isLate(answer) ? timesLate + 1 : 0;
    if (timesLate > 0) staleProperties.insert(read.name);
    if (!isError(answer)) {
        hasSpoken = true;
        ItemProperties next = shown;
        if (readProperty(answer, read.name, side, next)) {
            // What an item is known by has to be there before it is shown.
            bool isFirst = !hasAnswered && read.name == "Id";
            hasAnswered = hasAnswered || isFirst;
            bool isRepetition = next == shown && isIconNamed(read.name, shown);
            if (isRepetition) ++repetitions;
            hasNews = hasNews || isFirst || isRepetition || !(next == shown);
            shown = std::move(next);
        }
    }
    reads.remove_if([&read](const Read& each) { return &each == &read; });
    // One that has no Id for itself is known by its program.
    if (!hasAnswered && hasSpoken && reads.empty() && !staleProperties.contains("Id"))
        hasAnswered = hasNews = true;
    if ((reads.empty() || asksSingly) && std::exchange(hasNews, false)) tell();
}

void Item::activate(int x, int y, std::function<void()> refused) {
    refusedActivation = std::move(refused);
    sd_bus_slot* slot = nullptr;
    sd_bus_call_method_async(bus.get(), &slot, where.owner.c_str(), where.path.c_str(), interface,
                             "Activate", onActivated, this, "ii", x, y);
    activation.reset(slot);
}

int Item::onActivated(sd_bus_message* answer, void* data, sd_bus_error*) {
    auto& item = *static_cast<Item*>(data);
    auto refused = std::exchange(item.refusedActivation, nullptr);
    if (isUnknown(answer) && refused) refused();
    return 0;
}

void Item::click(const char* method, int x, int y) {
    sd_bus_call_method_async(bus.get(), nullptr, where.owner.c_str(), where.path.c_str(), interface,
                             method, nullptr, nullptr, "ii", x, y);
}

void Item::scroll(int steps, bool isHorizontal) {
    bool countsSteps = where.path.starts_with(stepCounters);
    sd_bus_call_method_async(bus.get(), nullptr, where.owner.c_str(), where.path.c_str(), interface,
                             "Scroll", nullptr, nullptr, "is",
                             countsSteps ? steps : -steps * wheelStep,
                             isHorizontal ? "horizontal" : "vertical");
}

}  // namespace nevo::statusnotifier
