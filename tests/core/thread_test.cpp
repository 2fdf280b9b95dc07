#include "core/threads/object.h"
#include "core/threads/thread.h"
#include "core/threads/thread_storage.h"
#include "tests/core/text.h"
#include "tests/support/log_capture.h"
#include "tests/support/other_threads.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <ctime>
#include <functional>
#include <random>

#include <pthread.h>

using namespace std::chrono_literals;
using testing::ElementsAre;

namespace {

using Function = std::function<void()>;

std::atomic<int> g_calls{0}; // that have not been destroyed

/// Has its receiver call the function.
struct Call : CZeEvent {
    explicit Call(const Function& f) : CZeEvent(1), function(f) { ++g_calls; }
    ~Call() override { --g_calls; }
    const Function function;
};

struct Caller : CZeObject {
    void call(const Function& function) { EXPECT_TRUE(post(std::make_unique<Call>(function))); }
    void handleEvent(CZeEvent& event) override { dynamic_cast<Call&>(event).function(); }
    void handleTimer(int64_t id) override { onTimer(id); }
    std::function<void(int64_t)> onTimer;
};

TEST(Object, TakesItsEventsAndTimersAlong) {
    CZeThread thread;
    std::string handled;
    Caller here;
    auto* const there = new Caller;
    for (const char name : {'a', 'b', 'c'}) {
        there->call([&, name] { handled += name; });
        here.call([&] { handled += '.'; });
    }
    there->startTimer(1);
    there->onTimer = [&](int64_t) {
        if (handled != "abc")
            return;
        thread.end(7);
        there->call([] { ADD_FAILURE() << "vanishes with the object"; });
        delete there;
    };
    EXPECT_TRUE(there->handOver(thread));
    EXPECT_TRUE(thread.start());
    EXPECT_TRUE(thread.wait());
    EXPECT_FALSE(CZeThread::runLoop(0));
    EXPECT_EQ(handled, "abc...");
    EXPECT_EQ(g_calls, 0);
}

TEST(Object, HasTimersThatSkipWhatTheyMiss) {
    const LogCapture log;
    Caller object, other;
    std::vector<int64_t> ids;
    const auto start = std::chrono::steady_clock::now();
    const int64_t once = object.startTimer(40, Ze::Once), often = object.startTimer(40);
    const int64_t never = other.startTimer(INT64_MAX);
    object.onTimer = [&](int64_t id) {
        constexpr std::array kEarliest = {40ms, 140ms, 160ms, 200ms};
        EXPECT_GE(std::chrono::steady_clock::now() - start, kEarliest[ids.size()]);
        ids.push_back(id);
        if (ids.size() == 1)
            std::this_thread::sleep_until(start + 140ms); // beyond 40, 80 and 120 of the other one
        if (ids.size() == 4)
            CZeThread::current()->end();
    };
    EXPECT_TRUE(CZeThread::runLoop(20000));
    EXPECT_THAT(ids, ElementsAre(once, often, often, often));
    EXPECT_TRUE(object.stopTimer(often));
    for (const int64_t id : {once, often, never})
        EXPECT_FALSE(object.stopTimer(id));
    EXPECT_TRUE(other.stopTimer(never));
    EXPECT_EQ(object.startTimer(0), 0);
    EXPECT_EQ(log.texts().size(), 4u);
}

TEST(Object, LeavesTheRestPendingAtTheEnd) {
    Caller object;
    std::string handled;
    const auto handle = [&](char name) {
        handled += name;
        CZeThread::current()->end();
    };
    object.onTimer = [&](int64_t) { handle('t'); };
    for (int i = 0; i < 2; ++i) {
        object.startTimer(1, Ze::Once);
        object.call([&] { handle('e'); });
    }
    std::this_thread::sleep_for(2ms);
    for (const char* const expected : {"t", "tt", "tte", "ttee"}) {
        EXPECT_TRUE(CZeThread::runLoop());
        EXPECT_EQ(handled, expected);
    }
    EXPECT_FALSE(CZeThread::runLoop(10));
    const Function forever = [&] { object.call(forever); };
    object.call(forever);
    object.startTimer(1, Ze::Once); // has its turn
    EXPECT_TRUE(CZeThread::runLoop());
}

TEST(Thread, IsWaitedForByManyThoughItStartsAgain) {
    int missed = 0;
    for (int round = 1; round <= 20; ++round) {
        CZeThread thread;
        std::array<std::thread, 2> others;
        std::atomic<int> waiting{0};
        EXPECT_TRUE(thread.start());
        for (std::thread& other : others)
            other = std::thread([&] {
                ++waiting;
                EXPECT_TRUE(thread.wait());
                --waiting;
            });
        EXPECT_TRUE(becomesTrue([&] { return waiting == 2; }));
        std::this_thread::sleep_for(2ms); // enough for most to be in `wait`
        thread.end(round);
        thread.end(-1); // ignored
        EXPECT_TRUE(thread.wait());
        EXPECT_EQ(thread.result(), round);
        EXPECT_TRUE(thread.start());
        for (int i = 0; i < 100 && waiting > 0; ++i)
            std::this_thread::sleep_for(1ms);
        missed += waiting > 0;
        thread.end();
        EXPECT_TRUE(thread.wait());
        for (std::thread& other : others)
            other.join();
    }
    EXPECT_LT(missed, 5);
}

TEST(Thread, SleepsUntilItIsEnded) {
    CZeThread thread(text(u"größer als elf"));
    Caller object;
    EXPECT_TRUE(object.handOver(thread));
    for (const int round : {1, 2}) {
        std::array<char, 16> name = {};
        EXPECT_TRUE(thread.start());
        for (int i = 0; i < 10; ++i) { // each may go while `post` is about to return
            auto* const brief = new Caller;
            EXPECT_TRUE(brief->handOver(thread));
            brief->call([brief] { delete brief; });
            EXPECT_TRUE(becomesTrue([] { return g_calls == 0; }));
        }
        object.call([&] { pthread_getname_np(pthread_self(), name.data(), name.size()); });
        const std::clock_t before = std::clock();
        EXPECT_FALSE(thread.wait(200));
        EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 20);
        EXPECT_TRUE(thread.isRunning());
        EXPECT_EQ(thread.result(), 0);
        object.call([&] { thread.end(round); });
        EXPECT_TRUE(thread.wait(20000));
        thread.end(5); // ignored
        EXPECT_FALSE(thread.isRunning());
        EXPECT_EQ(thread.result(), round);
        EXPECT_STREQ(name.data(), "größer als el"); // f is the 16th byte
    }
}

TEST(Thread, RefusesWhatCannotBe) {
    const LogCapture log;
    CZeThread& here = *CZeThread::current();
    Caller object;
    auto thread = std::make_unique<CZeThread>();
    pthread_attr_t normal, huge;
    pthread_getattr_default_np(&normal);
    pthread_getattr_default_np(&huge);
    pthread_attr_setstacksize(&huge, 1UL << 50);
    ASSERT_EQ(pthread_setattr_default_np(&huge), 0);
    EXPECT_FALSE(thread->start());
    ASSERT_EQ(pthread_setattr_default_np(&normal), 0);
    const auto tasks = taskCount();
    EXPECT_TRUE(object.handOver(*thread));
    EXPECT_TRUE(thread->start());
    for (const bool isDone : {object.handOver(here), object.startTimer(1) != 0, object.stopTimer(1),
                              object.post(nullptr), thread->start(), here.wait()})
        EXPECT_FALSE(isDone);
    object.call([&] {
        EXPECT_FALSE(CZeThread::runLoop());
        thread.reset();
        EXPECT_FALSE(CZeThread::current());
    });
    EXPECT_TRUE(becomesTrue([&] { return taskCount() == tasks; }));
    EXPECT_FALSE(object.thread());
    EXPECT_TRUE(object.handOver(here));
    std::atomic<int> step{0};
    object.call([&] {
        step = 1;
        std::this_thread::sleep_for(20ms);
        step = 2;
    });
    {
        CZeThread running;
        EXPECT_TRUE(object.handOver(running));
        EXPECT_TRUE(running.start());
        EXPECT_TRUE(Caller().handOver(running)); // and is destroyed here
        EXPECT_TRUE(becomesTrue([&] { return step == 1; }));
    }
    EXPECT_EQ(step, 2);
    EXPECT_EQ(log.texts().size(), 11u); // one for each
    EXPECT_THAT(log.texts().front(),
                testing::StartsWith("CZeThread::start: The system has no thread to give: "));
}

/// Calls its deleter when it is destroyed.
using Last = std::shared_ptr<void>;

TEST(Thread, NeedNotBeMadeHereForItsObjectsAndValues) {
    const LogCapture log;
    std::string order;
    bool isMade = false;
    CZeThreadStorage<Last> first, second;
    const auto set = [&](CZeThreadStorage<Last>& storage, char name) {
        return storage.set(std::make_unique<Last>(nullptr, [&order, name](void*) { order += name; }));
    };
    const auto work = [&] {
        EXPECT_FALSE(first.get());
        EXPECT_TRUE(set(first, 'a'));
        EXPECT_TRUE(set(second, 'e'));
        first.set(std::make_unique<Last>(nullptr, [&](void*) {
            const bool isWrong =
                first.get() || !second.get() || set(first, '-') || (isMade && CZeThread::runLoop(0));
            order += isWrong ? '!' : 'd';
        }));
        EXPECT_TRUE(set(*std::make_unique<CZeThreadStorage<Last>>(), 'b'));
        static thread_local const Last local(nullptr, [&](void*) { order += first.get() ? 'c' : '!'; });
    };
    std::atomic<CZeThread*> host{nullptr};
    Caller* orphan = nullptr;
    std::thread thread([&] {
        host = CZeThread::current();
        orphan = new Caller;
        EXPECT_TRUE(CZeThread::runLoop());
        orphan->call(work);
        work();
    });
    EXPECT_TRUE(becomesTrue([&] { return host.load() != nullptr; }));
    host.load()->end();
    thread.join();
    EXPECT_FALSE(orphan->thread());
    isMade = true;
    CZeThread another;
    EXPECT_TRUE(orphan->handOver(another));
    EXPECT_TRUE(another.start());
    orphan->call([&] { another.end(); });
    EXPECT_TRUE(another.wait());
    delete orphan;
    EXPECT_EQ(order, "abc-deabc-de");
    EXPECT_THAT(log.texts(), ElementsAre("CZeThreadStorage::set: The thread is ending",
                                         "CZeThreadStorage::set: The thread is ending",
                                         "CZeThread::runLoop: The thread's loop is running or has ended"));
}

struct Traveller : Caller {
    std::array<int, 8> handled = {}; // by the thread that posted
};

/// Where all threads find an object. Who holds the lock may post to it; who posts its end takes it away.
struct Place {
    std::mutex mutex;
    Traveller* object = nullptr;
    std::array<int, 8> posted = {}; // to this object, by each thread
};

/// Takes ZE_STRESS_SECONDS, or 1.
TEST(Object, StandsThreadsThatPostHandOverAndDestroy) {
    const LogCapture log;
    const char* const seconds = std::getenv("ZE_STRESS_SECONDS");
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::seconds(seconds ? std::atoi(seconds) : 1);
    std::array<CZeThread, 8> threads;
    std::array<Place, 32> places;
    const auto postAtRandom = [&](size_t self) {
        std::minstd_rand random(static_cast<unsigned>(self + 1));
        while (std::chrono::steady_clock::now() < end) {
            Place& place = places[random() % places.size()];
            CZeThread& other = threads[random() % threads.size()];
            const auto choice = random() % 16;
            EXPECT_TRUE(becomesTrue([] { return g_calls < 5000; })); // posting is the faster side
            const std::lock_guard lock(place.mutex);
            if (!place.object) {
                Traveller* const object = place.object = new Traveller;
                place.posted = {};
                object->onTimer = [object](int64_t) { EXPECT_EQ(object->thread(), CZeThread::current()); };
                object->startTimer(1);
                EXPECT_TRUE(object->handOver(other));
            }
            Traveller* const object = place.object;
            object->call([=, &other, number = ++place.posted[self]] {
                EXPECT_EQ(object->thread(), CZeThread::current());
                EXPECT_EQ(number, ++object->handled[self]);
                EXPECT_TRUE(choice != 1 || object->handOver(other));
                if (choice == 0)
                    delete object;
            });
            if (choice == 0)
                place.object = nullptr;
        }
    };
    std::array<std::thread, 8> posting;
    for (size_t i = 0; i < posting.size(); ++i) {
        EXPECT_TRUE(threads[i].start());
        posting[i] = std::thread(postAtRandom, i);
    }
    for (std::thread& thread : posting)
        thread.join();
    EXPECT_TRUE(becomesTrue([] { return g_calls == 0; }));
    for (CZeThread& thread : threads)
        thread.end();
    for (CZeThread& thread : threads)
        EXPECT_TRUE(thread.wait());
    for (const Place& place : places)
        delete place.object;
    EXPECT_THAT(log.texts(), testing::IsEmpty());
}

} // namespace
