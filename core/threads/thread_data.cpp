#include "core/threads/thread_data.h"

#include "core/threads/library_pin.h"
#include "core/threads/thread.h"
#include "core/warning.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

// Where each thread finds its record. Made at the first use, since a process has few keys. The system calls
// the key's destructor on every thread that has a record, after those of its `thread_local` objects.
constinit pthread_key_t g_key = {};
constinit std::atomic<bool> g_hasKey{false};

/// The end of any thread that has a record.
void endThread(void* record) {
    auto* const data = static_cast<CZeThreadData*>(record);
    pthread_setspecific(g_key, data); // which the system has taken back, for the values' destructors
    data->isDestroyingValues = true;
    while (!data->values.empty()) {
        const ze::StoredValue last = data->values.back();
        data->values.pop_back();
        last.destroy(last.value);
    }
    data->isDestroyingValues = false;
    pthread_setspecific(g_key, nullptr);

    CZeThread* const adopted = data->isAdopted ? data->thread : nullptr;
    {
        const std::lock_guard lock(data->mutex);
        data->state = data->isAdopted ? CZeThreadData::State::Stopped : CZeThreadData::State::Ended;
        data->ended.notifyAll();
    }
    delete adopted;
    data->release();
}

bool makeKey() {
    static const bool isMade = pthread_key_create(&g_key, endThread) == 0;
    g_hasKey = isMade;
    return isMade;
}

/// Copies as many characters of `text` as fit in, and a zero byte.
template <std::size_t size>
void copyCharacters(char (&copy)[size], const CZeByteArray& text) {
    auto length = std::min(static_cast<std::size_t>(text.size()), size - 1);
    const char* const bytes = text.constData();
    while (length > 0 && (bytes[length] & 0xC0) == 0x80)
        --length;
    std::memcpy(copy, bytes, length);
    copy[length] = '\0';
}

} // namespace

int64_t ze::uniqueId() {
    static constinit std::atomic<int64_t> last{0};
    return ++last;
}

CZeThreadData* CZeThreadData::existing() {
    return g_hasKey ? static_cast<CZeThreadData*>(pthread_getspecific(g_key)) : nullptr;
}

CZeThreadData* CZeThreadData::create(CZeThread* thread, const CZeString& name) {
    if (!ze::keepLibraryLoaded()) {
        ze::coreWarning("CZeThreadData::create: Cannot keep the library loaded");
        return nullptr;
    }
    if (!makeKey()) {
        ze::coreWarning("CZeThreadData::create: No key for the data of threads");
        return nullptr;
    }
    auto* const data = new (std::nothrow) CZeThreadData;
    if (!data) {
        ze::coreWarning("CZeThreadData::create: Not enough memory");
        return nullptr;
    }
    copyCharacters(data->name, name.toUtf8());
    data->thread = thread;
    return data;
}

CZeThreadData* CZeThreadData::current() {
    if (CZeThreadData* const data = existing())
        return data;
    CZeThreadData* const data = create(nullptr, CZeString());
    if (!data)
        return nullptr;
    data->isAdopted = true;
    data->thread = new (std::nothrow) CZeThread(*data);
    if (data->thread && pthread_setspecific(g_key, data) == 0) {
        data->state = State::Running;
        return data;
    }
    ze::coreWarning("CZeThreadData::current: Not enough memory");
    delete data->thread;
    data->release();
    return nullptr;
}

void CZeThreadData::release() {
    if (owners.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete this;
}

CZeThread* CZeThreadData::liveThread() const {
    const std::lock_guard lock(mutex);
    return thread;
}

bool CZeThreadData::join(std::unique_lock<std::mutex>& lock, ze::SteadyTime deadline) {
    const int64_t awaited = starts;
    while (state != State::Stopped && starts == awaited) {
        if (state == State::Ended) {
            state = State::Joining;
            lock.unlock();
            pthread_join(handle, nullptr);
            lock.lock();
            state = State::Stopped;
            ended.notifyAll();
        } else if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        } else {
            ended.waitUntil(lock, deadline);
        }
    }
    return true;
}

void* CZeThreadData::run(void* record) {
    auto* const data = static_cast<CZeThreadData*>(record);
    if (data->name[0] != '\0')
        pthread_setname_np(pthread_self(), data->name);
    const bool isKnown = pthread_setspecific(g_key, data) == 0;
    {
        std::unique_lock lock(data->mutex); // which the starting thread holds until all is set
        if (isKnown)
            data->loop(lock, ze::SteadyTime::max());
        data->isLooping = false;
    }
    if (!isKnown) {
        ze::coreWarning("CZeThread::start: Not enough memory for the thread's data");
        endThread(data);
    }
    return nullptr;
}
