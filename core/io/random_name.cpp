#include "core/io/random_name.h"

#include <cstdlib>

namespace ze {

CZeString randomName(const CZeString& prefix, int count) {
    constexpr char kCharacters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    CZeString name = prefix;
    for (int i = 0; i < count; ++i)
        name.append(CZeChar(kCharacters[arc4random_uniform(sizeof kCharacters - 1)]));
    return name;
}

} // namespace ze
