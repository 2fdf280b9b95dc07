#include "core/threads/pending.h"

#include <iterator>

namespace ze {
namespace {

template <class Item>
std::list<Item> takeFrom(std::list<Item>& items, const CZeObject* receiver) {
    std::list<Item> taken;
    for (auto item = items.begin(); item != items.end();) {
        const auto next = std::next(item);
        if (item->receiver == receiver)
            taken.splice(taken.end(), items, item);
        item = next;
    }
    return taken;
}

bool isDueBefore(const Timer& timer, const Timer& other) {
    return timer.due < other.due;
}

} // namespace

void Pending::add(Pending& other) {
    events.splice(events.end(), other.events);
    timers.merge(other.timers, isDueBefore);
}

Pending Pending::take(const CZeObject* receiver) {
    return {takeFrom(events, receiver), takeFrom(timers, receiver)};
}

void Pending::advanceTimer(SteadyTime now) {
    std::list<Timer> first;
    first.splice(first.begin(), timers, timers.begin());
    Timer& timer = first.front();
    if (timer.kind == Ze::Once)
        return;
    timer.due += timer.interval * ((now - timer.due) / timer.interval + 1);
    timers.merge(first, isDueBefore);
}

} // namespace ze
