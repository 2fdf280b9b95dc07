// Parts of strings.

#include "core/tools/string_ref.h"

CZeStringRef CZeString::midRef(int position, int count) const {
    switch (ze::cutRange(size(), position, count)) {
    case ze::Cut::Null:
        return {};
    case ze::Cut::Empty:
        return CZeStringRef(this, 0, 0);
    case ze::Cut::Full:
        return CZeStringRef(this);
    case ze::Cut::Subset:
        break;
    }
    return CZeStringRef(this, position, count);
}

CZeStringRef CZeString::leftRef(int count) const {
    return midRef(0, count);
}

CZeStringRef CZeString::rightRef(int count) const {
    return count < 0 ? midRef(0) : midRef(size() - count, count);
}
