#include "platform/x11/X11RunLoop.h"

#include <QEventLoop>
#include <QTimer>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <ctime>
#include <deque>
#include <map>

namespace nevo {

namespace {
double monotonicSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}
/// A timer of zero seconds that repeats would starve the rest.
constexpr double shortestInterval = 0.001;
}  // namespace

/// What waits for its time, ordered by time and then by posting, behind a single timer of Qt's:
/// many of those would fire in an order of their own.
class X11RunLoop::Queue : public std::enable_shared_from_this<Queue> {
public:
    using Key = std::pair<double, std::uint64_t>;
    struct Entry {
        std::function<void()> work;
        double interval = 0;
        std::uint64_t id = 0;
    };

    Queue() {
        alarm.setSingleShot(true);
        alarm.setTimerType(Qt::PreciseTimer);
        QObject::connect(&alarm, &QTimer::timeout, &alarm, [this] { runDue(); });
    }

    std::uint64_t add(double due, Entry entry) {
        std::uint64_t sequence = ++lastSequence;
        if (entry.id == 0) entry.id = sequence;
        std::uint64_t id = entry.id;
        places[id] = {due, sequence};
        entries.emplace(Key{due, sequence}, std::move(entry));
        arm();
        return id;
    }

    void remove(std::uint64_t id) {
        auto place = places.find(id);
        if (place == places.end()) return;
        entries.erase(place->second);
        places.erase(place);
    }

    void clear() {
        alarm.stop();
        places.clear();
        // What is destroyed may remove or add entries of its own.
        auto doomed = std::exchange(entries, {});
    }

private:
    void arm() {
        if (entries.empty()) return;
        double wait = std::max(0.0, entries.begin()->first.first - monotonicSeconds());
        alarm.start(static_cast<int>(std::min(wait * 1000.0 + 0.999, 1e9)));
    }

    void runDue() {
        auto alive = shared_from_this();
        double until = monotonicSeconds();
        // What is added from now on waits for a later turn, even if it is due.
        std::uint64_t newest = lastSequence;
        while (true) {
            auto next = entries.begin();
            while (next != entries.end() && next->first.second > newest) ++next;
            if (next == entries.end() || next->first.first > until) break;
            Entry entry = std::move(next->second);
            double due = next->first.first;
            places.erase(entry.id);
            entries.erase(next);
            if (entry.interval > 0) {
                add(std::max(due + entry.interval, until), {entry.work, entry.interval, entry.id});
            }
            // A nested loop inside the work must find the alarm set.
            arm();
            entry.work();
        }
        arm();
    }

    QTimer alarm;
    std::map<Key, Entry> entries;
    std::map<std::uint64_t, Key> places;
    std::uint64_t lastSequence = 0;
};

X11RunLoop::X11RunLoop(XServer& x) : server(x), queue(std::make_shared<Queue>()) {}
X11RunLoop::~X11RunLoop() = default;

void X11RunLoop::drop() { queue->clear(); }

double X11RunLoop::now() const { return monotonicSeconds(); }

void X11RunLoop::post(std::function<void()> work) { postAfter(0, std::move(work)); }

void X11RunLoop::postAfter(double seconds, std::function<void()> work) {
    queue->add(now() + std::max(0.0, seconds), {std::move(work), 0, 0});
}

Registration X11RunLoop::timer(double seconds, bool repeats, std::function<void()> fire) {
    double interval = std::max(seconds, shortestInterval);
    auto id =
        queue->add(now() + std::max(0.0, seconds), {std::move(fire), repeats ? interval : 0.0, 0});
    return Registration([weak = std::weak_ptr(queue), id] {
        if (auto held = weak.lock()) held->remove(id);
    });
}

void X11RunLoop::blockFor(double seconds) {
    server.flush();
    if (!(seconds > 0)) return;
    timespec left{static_cast<time_t>(seconds),
                  static_cast<long>((seconds - std::floor(seconds)) * 1e9)};
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

void X11RunLoop::turnFor(double seconds) {
    QEventLoop loop;
    QTimer::singleShot(static_cast<int>(seconds * 1000.0), Qt::PreciseTimer, &loop,
                       &QEventLoop::quit);
    loop.exec();
}

}  // namespace nevo
