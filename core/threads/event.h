// What is posted to objects.

#pragma once

#include "core/export.h"

/// Something that an object is to handle. Whoever needs more than a number derives from it.
class ZE_EXPORT CZeEvent {
public:
    /// `type` tells the receiver what it is.
    explicit CZeEvent(int type) : m_type(type) {}
    /// Called on the thread that has handled the event, right after, or where it vanishes.
    virtual ~CZeEvent();
    CZeEvent(const CZeEvent&) = delete;
    CZeEvent& operator=(const CZeEvent&) = delete;

    /// The number that it was made with.
    int type() const { return m_type; }

private:
    const int m_type;
};
