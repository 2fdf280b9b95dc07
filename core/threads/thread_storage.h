// A value for each thread.

#pragma once

#include "core/export.h"

#include <cstdint>
#include <memory>

/// What CZeThreadStorage does for values of all types. Not for use by itself.
class ZE_EXPORT CZeThreadStorageBase {
public:
    CZeThreadStorageBase(const CZeThreadStorageBase&) = delete;
    CZeThreadStorageBase& operator=(const CZeThreadStorageBase&) = delete;

protected:
    /// Destroys a value, which is not null.
    using Destroy = void(void* value);

    CZeThreadStorageBase();
    ~CZeThreadStorageBase();
    /// The calling thread's value, or null.
    void* get() const;
    /// Takes `value` for the calling thread and destroys the one before; null for none. False when it is not
    /// taken, and nothing has changed.
    bool set(void* value, Destroy* destroy);

private:
    const int64_t m_id; // no other storage of the process ever has it
};

/// Holds a T for each thread that has set one, whether or not it was made as a CZeThread. The values of a
/// thread, of all storages, are destroyed on it when it ends, the one set last first. That comes after its
/// last event and the destruction of its `thread_local` objects, and before `CZeThread::wait` returns. The
/// values of the thread that ends the process, and of those that still run then, are not destroyed.
///
/// Any thread may call any member while the storage lives. With the storage goes the value of the thread that
/// destroys it; those of other threads stay until these end, so their destructors must be loaded until then.
template <class T>
class CZeThreadStorage : private CZeThreadStorageBase {
public:
    /// A storage without values.
    CZeThreadStorage() = default;

    /// The calling thread's value, null when it has none.
    T* get() const { return static_cast<T*>(CZeThreadStorageBase::get()); }
    /// Makes `value` the calling thread's, and destroys the one that it had; null leaves it without one.
    /// False with a warning without memory, and for another value than null when values of the ending thread
    /// are being destroyed: then `value` is destroyed and the thread keeps what it had.
    bool set(std::unique_ptr<T> value) {
        const bool isTaken =
            CZeThreadStorageBase::set(value.get(), [](void* old) { delete static_cast<T*>(old); });
        if (isTaken)
            value.release();
        return isTaken;
    }
};
