#include "menubar/IconSource.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>

#include "menubar/Log.h"

namespace nevo::menubar {

using statusnotifier::Picture;
using namespace std::chrono_literals;

namespace {
/// One picture takes milliseconds, and the first the start of the helper.
constexpr auto patience = 5s;
/// How long a helper that has nothing to do stays for more.
constexpr auto idleTime = 3s;
/// After a picture that was looked for once more: its program may draw it all the time, and the
/// start of a helper costs more than its staying.
constexpr auto idleTimeOfRepetition = 60s;
/// How much longer than a look at one picture takes it isn't looked at again.
constexpr int restAfterLook = 10;
/// A program that draws its icon under ever new names must not fill the memory.
constexpr std::size_t mostKnown = 300;
constexpr std::size_t longestHeader = 64;
constexpr int mostFailures = 3;
constexpr auto startPause = 30s;
/// Until a name that wasn't there is looked for again.
constexpr auto longestPause = 1h;

bool isOneLine(const std::string& text) {
    return std::none_of(text.begin(), text.end(),
                        [](char each) { return each == '\n' || each == '\t' || each == '\0'; });
}
}  // namespace

const Picture* IconSource::find(const Name& name) {
    auto found = known.find(name);
    if (found == known.end()) {
        if (known.size() >= mostKnown) forgetUnused();
        // Too many at a time: the name is asked for again when its item shows it anew.
        static const Picture none;
        if (known.size() >= mostKnown) return &none;
        found = known.emplace(name, Entry{}).first;
        bool canBeAsked = !name.name.empty() && isOneLine(name.name) && isOneLine(name.themePath);
        if (!canBeAsked) found->second.picture.emplace();
    }
    Entry& entry = found->second;
    if (!entry.picture || Clock::now() >= entry.goodUntil) await(name, entry);
    return entry.picture ? &*entry.picture : nullptr;
}

void IconSource::lookAnew(const Name& name) {
    bool isThemes = name.themePath.empty() && !name.name.starts_with('/');
    auto found = known.find(name);
    // What has ended the helper time and again would do so for ever.
    if (found == known.end() || isThemes || found->second.failures >= mostFailures) return;
    outdated.insert(name);
}

void IconSource::lookForOutdated() {
    auto now = Clock::now();
    std::erase_if(outdated, [&](const Name& name) {
        auto found = known.find(name);
        if (found == known.end()) return true;
        Entry& entry = found->second;
        if (entry.isAwaited || now < entry.rest) return false;
        await(name, entry);
        return true;
    });
}

void IconSource::await(const Name& name, Entry& entry) {
    if (!std::exchange(entry.isAwaited, true)) waiting.push_back(name);
}

void IconSource::forgetUnused() {
    auto isUnused = [this](const Name& name) { return name != current && !isInUse(name); };
    std::erase_if(waiting, isUnused);
    std::erase_if(failed, isUnused);
    std::erase_if(known, [&](const auto& entry) { return isUnused(entry.first); });
}

/// The queue whose first name is the next to be looked for; nullptr when there is none. A program
/// that takes a new name all the time waits like the others for the one that it has then.
std::deque<IconSource::Name>* IconSource::nextQueue() {
    for (auto* queue : {&waiting, &failed}) {
        while (!queue->empty() && !isInUse(queue->front())) {
            known.erase(queue->front());
            queue->pop_front();
        }
        if (!queue->empty()) return queue;
    }
    return nullptr;
}

bool IconSource::startHelper() {
    if (helper) return true;
    std::string failure;
    helper = HelperProcess::start({"--icons"}, true, failure);
    if (!helper) {
        logLine(failure);
        nextStart = Clock::now() + startPause;
    }
    return helper != nullptr;
}

void IconSource::process() {
    HelperProcess::reap();
    lookForOutdated();
    if (!current && Clock::now() >= nextStart) askNext();
    if (helper) send();
    bool isAlive = !helper || receive();
    while (takeAnswer()) {
    }
    bool isLate = helper && Clock::now() >= due;
    if (!isAlive || isLate) giveUp();
}

void IconSource::askNext() {
    auto* queue = nextQueue();
    if (queue == nullptr || !startHelper()) return;
    current = std::move(queue->front());
    queue->pop_front();
    toSend = fmt::format("1 {}\t{}\t{}\n", current->side, current->themePath, current->name);
    asked = Clock::now();
    due = asked + patience;
}

void IconSource::send() {
    while (!toSend.empty()) {
        auto count = ::write(helper->input(), toSend.data(), toSend.size());
        if (count <= 0) return;
        toSend.erase(0, static_cast<std::size_t>(count));
    }
}

/// False when the helper has ended.
bool IconSource::receive() {
    std::array<char, 64 * 1024> bytes;
    while (true) {
        auto count = ::read(helper->output(), bytes.data(), bytes.size());
        if (count == 0) return false;
        if (count < 0) return errno == EAGAIN || errno == EINTR;
        received.append(bytes.data(), static_cast<std::size_t>(count));
    }
}

/// An answer is a line "ID WIDTH HEIGHT" and the pixels.
bool IconSource::takeAnswer() {
    std::size_t end = received.find('\n');
    if (end == std::string::npos) return false;
    int id = 0;
    int width = 0;
    int height = 0;
    bool isHeader = end <= longestHeader &&
                    std::sscanf(received.c_str(), "%d %d %d\n", &id, &width, &height) == 3;
    int side = current ? current->side : 0;
    bool fits = width >= 0 && height >= 0 && width <= side && height <= side;
    if (!isHeader || !fits || !current) {
        giveUp();
        return false;
    }
    Picture picture{width, height,
                    std::vector<std::uint32_t>(static_cast<std::size_t>(width) *
                                               static_cast<std::size_t>(height))};
    std::size_t size = picture.pixels.size() * sizeof picture.pixels[0];
    if (received.size() < end + 1 + size) return false;
    std::memcpy(picture.pixels.data(), received.data() + end + 1, size);
    received.erase(0, end + 1 + size);
    auto now = Clock::now();
    Entry& entry = known[*current];
    due = now + (entry.picture ? idleTimeOfRepetition : idleTime);
    entry.failures = 0;
    entry.rest = now + restAfterLook * (now - asked);
    // Some programs write the file only after they have named it.
    bool mayComeLater = picture.isEmpty();
    settle(*std::exchange(current, std::nullopt), std::move(picture), mayComeLater);
    askNext();
    send();
    return true;
}

void IconSource::settle(const Name& name, Picture picture, bool mayComeLater) {
    Entry& entry = known[name];
    bool isLost = picture.isEmpty() && entry.picture && !entry.picture->isEmpty();
    bool isNews = !isLost && entry.picture != picture;
    if (isNews) entry.picture = std::move(picture);
    entry.isAwaited = false;
    entry.goodUntil = mayComeLater ? Clock::now() + entry.pause : Clock::time_point::max();
    entry.pause = mayComeLater ? std::min<std::chrono::seconds>(2 * entry.pause, longestPause)
                               : shortestPause;
    if (isNews) changed(name);
}

/// The helper has ended, hangs, has spoken nonsense, or has nothing to do.
void IconSource::giveUp() {
    helper.reset();
    toSend.clear();
    received.clear();
    if (!current) return;
    Name name = *std::exchange(current, std::nullopt);
    // Another may have been to blame: a machine that is only just starting up.
    if (++known[name].failures < mostFailures) {
        failed.push_back(name);
    } else {
        settle(name, {}, false);
    }
}

void IconSource::appendTo(std::vector<pollfd>& descriptors) const {
    HelperProcess::appendDying(descriptors);
    if (!helper) return;
    descriptors.push_back({helper->output(), POLLIN, 0});
    if (!toSend.empty()) descriptors.push_back({helper->input(), POLLOUT, 0});
}

std::optional<IconSource::Clock::time_point> IconSource::deadline() const {
    if (!current && (!waiting.empty() || !failed.empty())) return std::max(Clock::now(), nextStart);
    auto next = helper ? std::optional(due) : std::nullopt;
    for (const Name& name : outdated) {
        auto found = known.find(name);
        if (found == known.end() || found->second.isAwaited) continue;
        next = std::min(next.value_or(found->second.rest), found->second.rest);
    }
    return next;
}

}  // namespace nevo::menubar
