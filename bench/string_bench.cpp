// Building strings by appending, and copying them, against std::u16string and the least that a shared copy
// takes.

#include "bench/ratio.h"
#include "core/tools/ze_string.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdio>
#include <memory>
#include <string>

namespace {

constexpr int kUnits = 1'000'000;
constexpr char16_t kPiece[] = u"ten units.";
constexpr int kPieceSize = 10;

CZeString appendUnits() {
    CZeString text;
    for (int i = 0; i < kUnits; ++i)
        text.append(CZeChar(static_cast<char16_t>(i)));
    return text;
}

std::u16string appendStandardUnits() {
    std::u16string text;
    for (int i = 0; i < kUnits; ++i)
        text.push_back(static_cast<char16_t>(i));
    return text;
}

CZeString appendPieces() {
    const auto* const piece = reinterpret_cast<const CZeChar*>(kPiece);
    CZeString text;
    for (int i = 0; i < kUnits / kPieceSize; ++i)
        text.append(piece, kPieceSize);
    return text;
}

std::u16string appendStandardPieces() {
    std::u16string text;
    for (int i = 0; i < kUnits / kPieceSize; ++i)
        text.append(kPiece, kPieceSize);
    return text;
}

bool agree(const CZeString& text, const std::u16string& standard) {
    return std::u16string(text.utf16(), static_cast<size_t>(text.size())) == standard &&
           text.size() == kUnits;
}

/// What a counted copy cannot do without: a pointer, and an atomic step up and down.
struct CountedPointer {
    explicit CountedPointer(std::atomic<int>* owners) : count(owners) {}
    CountedPointer(const CountedPointer& other) : count(other.count) { ++*count; }
    ~CountedPointer() { --*count; }
    CountedPointer& operator=(const CountedPointer&) = delete;

    std::atomic<int>* count;
};

constexpr int kCopies = 1000; // a single one is too short to time

template <class Text>
void copyOften(const Text& text) {
    for (int i = 0; i < kCopies; ++i) {
        const Text copy(text);
        benchmark::DoNotOptimize(&copy);
        benchmark::ClobberMemory();
    }
}

} // namespace

int main(int argc, char** argv) {
    if (!agree(appendUnits(), appendStandardUnits()) || !agree(appendPieces(), appendStandardPieces())) {
        std::fputs("The strings differ\n", stderr);
        return 1;
    }
    addComparison("append/1 unit", [] { benchmark::DoNotOptimize(appendUnits().constData()); },
                  {{"u16string", [] { benchmark::DoNotOptimize(appendStandardUnits().data()); }}});
    addComparison("append/10 units", [] { benchmark::DoNotOptimize(appendPieces().constData()); },
                  {{"u16string", [] { benchmark::DoNotOptimize(appendStandardPieces().data()); }}});
    for (const unsigned size : {5U, 100U, 10'000U}) {
        const std::u16string standard(size, u'x');
        const CZeString text(static_cast<int>(size), CZeChar(u'x'));
        const auto owners = std::make_shared<std::atomic<int>>(1);
        addComparison("1000 copies/" + std::to_string(size) + " units", [text] { copyOften(text); },
                      {{"u16string", [standard] { copyOften(standard); }},
                       {"counted pointer", [owners] { copyOften(CountedPointer(owners.get())); }}});
    }
    return runComparisons(argc, argv);
}
