// Any text and its replacements, also by parts of itself, against a plain loop.

#include "fuzz/fuzz_input.h"
#include "fuzz/plain_rules.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzInput input(data, std::min(size, 400UL)); // the plain loop takes long for long texts
    const bool ignoreCase = input.byte() & 1;
    const auto cs = ignoreCase ? Ze::CaseInsensitive : Ze::CaseSensitive;
    const size_t beforeSize = input.byte() % 8, afterSize = input.byte() % 16;
    const int position = static_cast<int8_t>(input.byte()), count = static_cast<int8_t>(input.byte());
    const std::u16string before = input.units(beforeSize), after = input.units(afterSize),
                         all = input.units();
    const CZeString text = toString(all);
    const CZeStringRef part = text.midRef(position, count);
    const std::u16string partUnits(all, static_cast<size_t>(part.position()),
                                   static_cast<size_t>(part.size()));

    require(isSame(CZeString(text).replace(toString(before), toString(after), cs),
                   replaced(all, before, after, ignoreCase)));
    CZeString own(text.unicode(), text.size());
    own.replace(CZeStringRef(&own, part.position(), part.size()), toString(after), cs);
    require(isSame(own, replaced(all, partUnits, after, ignoreCase)));
    own = CZeString(text.unicode(), text.size());
    own.replace(toString(before), CZeStringRef(&own, part.position(), part.size()), cs);
    require(isSame(own, replaced(all, before, partUnits, ignoreCase)));
    require(isSame(CZeString(text).remove(toString(before), cs), replaced(all, before, u"", ignoreCase)));

    const int from = position < 0 ? position + text.size() : position;
    std::u16string expected = all;
    if (from >= 0 && from <= text.size())
        expected.replace(static_cast<size_t>(from), count < 0 ? all.size() : static_cast<size_t>(count),
                         after);
    require(isSame(CZeString(text).replace(position, count, toString(after)), expected));
    return 0;
}
