#include "core/threads/thread_storage.h"

#include "core/threads/thread_data.h"
#include "core/warning.h"

#include <new>

CZeThreadStorageBase::CZeThreadStorageBase() : m_id(ze::uniqueId()) {}

CZeThreadStorageBase::~CZeThreadStorageBase() {
    set(nullptr, nullptr);
}

void* CZeThreadStorageBase::get() const {
    const CZeThreadData* const data = CZeThreadData::existing();
    if (!data)
        return nullptr;
    for (const ze::StoredValue& stored : data->values) {
        if (stored.storage == m_id)
            return stored.value;
    }
    return nullptr;
}

bool CZeThreadStorageBase::set(void* value, Destroy* destroy) {
    CZeThreadData* const data = value ? CZeThreadData::current() : CZeThreadData::existing();
    if (!data)
        return !value;
    if (value && data->isDestroyingValues) {
        ze::coreWarning("CZeThreadStorage::set: The thread is ending");
        return false;
    }
    std::vector<ze::StoredValue>& values = data->values;
    try {
        if (value)
            values.push_back({m_id, value, destroy});
    } catch (const std::bad_alloc&) {
        ze::coreWarning("CZeThreadStorage::set: Not enough memory");
        return false;
    }
    for (auto stored = values.begin(); stored != values.end(); ++stored) {
        if (stored->storage != m_id || stored->value == value)
            continue;
        const ze::StoredValue old = *stored;
        values.erase(stored);
        old.destroy(old.value); // last, since it may use the storages
        break;
    }
    return true;
}
