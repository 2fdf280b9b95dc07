// UTF-8 to UTF-16 and back, each into a string of its own, against a copy that moves as many bytes, ICU, and
// a plain loop over the bytes; and to Latin-1, against a loop over the units.

#include "bench/ratio.h"
#include "core/tools/ze_string.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include <unicode/ustring.h>

namespace {

/// Memory as a string takes it: fresh for each conversion.
using Block = std::unique_ptr<void, decltype(&std::free)>;

Block makeBlock(size_t size) {
    return Block(std::malloc(size), std::free);
}

/// Reads and writes `bytes` each.
void copy(const void* from, size_t bytes) {
    const Block to = makeBlock(bytes);
    std::memcpy(to.get(), from, bytes);
    benchmark::DoNotOptimize(to.get());
    benchmark::ClobberMemory();
}

int decodeWithIcu(const std::string& text, char16_t* units) {
    int32_t size = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units, static_cast<int32_t>(text.size()), &size, text.data(),
                         static_cast<int32_t>(text.size()), 0xFFFD, nullptr, &error);
    return size;
}

int encodeWithIcu(const std::u16string& text, char* bytes) {
    int32_t size = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8WithSub(bytes, static_cast<int32_t>(text.size() * 3), &size, text.data(),
                       static_cast<int32_t>(text.size()), '?', nullptr, &error);
    return size;
}

/// Sequence by sequence, with the checks that well-formed text passes.
int decodePlainly(const std::string& text, char16_t* units) {
    char16_t* out = units;
    const auto* byte = reinterpret_cast<const unsigned char*>(text.data());
    for (const auto* const end = byte + text.size(); byte < end;) {
        const unsigned lead = *byte++;
        const int tails = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        char32_t codePoint = tails ? lead & (0x3FU >> tails) : lead;
        for (int i = 0; i < tails; ++i) {
            if (byte == end || (*byte & 0xC0) != 0x80)
                return -1;
            codePoint = codePoint << 6 | (*byte++ & 0x3F);
        }
        if (codePoint < 0x10000) {
            *out++ = static_cast<char16_t>(codePoint);
        } else {
            *out++ = static_cast<char16_t>(0xD7C0 + (codePoint >> 10));
            *out++ = static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF));
        }
    }
    return static_cast<int>(out - units);
}

int encodePlainly(const std::u16string& text, char* bytes) {
    char* out = bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        char32_t codePoint = text[i];
        if ((codePoint & 0xFC00) == 0xD800 && i + 1 < text.size())
            codePoint = (codePoint << 10) + text[++i] - ((0xD800U << 10) + 0xDC00 - 0x10000);
        if (codePoint < 0x80) {
            *out++ = static_cast<char>(codePoint);
            continue;
        }
        const int tails = codePoint < 0x800 ? 1 : codePoint < 0x10000 ? 2 : 3;
        *out++ = static_cast<char>((0xFF00U >> (tails + 1) & 0xFF) | codePoint >> 6 * tails);
        for (int shift = 6 * (tails - 1); shift >= 0; shift -= 6)
            *out++ = static_cast<char>(0x80 | (codePoint >> shift & 0x3F));
    }
    return static_cast<int>(out - bytes);
}

/// Unit by unit: the compiler is kept from taking several at once.
#if !defined(__clang__)
__attribute__((optimize("no-tree-vectorize")))
#endif
int narrowPlainly(const std::u16string& text, char* latin1) {
#if defined(__clang__)
#pragma clang loop vectorize(disable)
#endif
    for (size_t i = 0; i < text.size(); ++i)
        latin1[i] = text[i] > 0xFF ? '?' : static_cast<char>(text[i]);
    return static_cast<int>(text.size());
}

template <class Element, class Convert>
void convert(size_t room, Convert conversion) {
    const Block block = makeBlock(room * sizeof(Element));
    benchmark::DoNotOptimize(conversion(static_cast<Element*>(block.get())));
    benchmark::ClobberMemory();
}

void decode(const std::string& text) {
    benchmark::DoNotOptimize(CZeString::fromUtf8(text.data(), static_cast<int>(text.size())).constData());
}

/// Whether the library narrows as the plain loop does.
bool agreeOnLatin1(const CZeString& string, const std::u16string& units) {
    std::string plain(units.size(), '\0');
    narrowPlainly(units, plain.data());
    const CZeByteArray library = string.toLatin1();
    return plain == std::string(library.begin(), library.end());
}

/// Whether all of them make the same of `text`, and `text` of that.
bool agree(const std::string& text, const std::u16string& units) {
    std::u16string plain(text.size(), u'\0'), icu(text.size(), u'\0');
    plain.resize(static_cast<size_t>(decodePlainly(text, plain.data())));
    icu.resize(static_cast<size_t>(decodeWithIcu(text, icu.data())));
    std::string bytes(units.size() * 3, '\0'), icuBytes(units.size() * 3, '\0');
    bytes.resize(static_cast<size_t>(encodePlainly(units, bytes.data())));
    icuBytes.resize(static_cast<size_t>(encodeWithIcu(units, icuBytes.data())));
    const CZeByteArray library = CZeString::fromUtf16(units.data(), static_cast<int>(units.size())).toUtf8();
    return plain == units && icu == units && bytes == text && icuBytes == text &&
           text == std::string(library.constData(), static_cast<size_t>(library.size()));
}

} // namespace

int main(int argc, char** argv) {
    const std::pair<const char*, std::string> samples[] = {
        {"ASCII", "The quick brown fox jumps over the lazy dog, 12 times an hour. "},
        {"Latin", "Fa\u00E7ade d'\u00E9t\u00E9, na\u00EFve G\u00E4ste \u00FCber S\u00FCdstra\u00DFe; el "
                  "ni\u00F1o comi\u00F3. "},
        {"Cyrillic", "\u0421\u044A\u0435\u0448\u044C \u0435\u0449\u0451 \u044D\u0442\u0438\u0445 "
                     "\u043C\u044F\u0433\u043A\u0438\u0445 \u0431\u0443\u043B\u043E\u043A, \u0434\u0430 "},
        {"CJK", "\u5929\u5730\u7384\u9EC3\uFF0C\u5B87\u5B99\u6D2A\u8352\u3002\u65E5\u6708\u76C8\u6603\uFF0C20"
                "26\u5E74\u3002"},
        {"emoji", "\U0001F600\U0001F44D ok \U0001F680\U0001F308\U0001F9E0\U0001F3B5!"},
    };
    for (const auto& [name, sample] : samples) {
        for (const size_t size : {1024UL, 1024UL * 1024}) {
            std::string text;
            while (text.size() < size)
                text += sample;
            const CZeString string = CZeString::fromUtf8(text.data(), static_cast<int>(text.size()));
            const std::u16string units(string.utf16(), static_cast<size_t>(string.size()));
            if (!agree(text, units) || !agreeOnLatin1(string, units)) {
                std::fprintf(stderr, "%s: not all make the same text\n", name);
                return 1;
            }
            const size_t mean = (text.size() + units.size() * 2) / 2;
            const auto wide = std::make_shared<std::string>(mean, 'x');
            const Contender memcpyBaseline{"memcpy", [wide] { copy(wide->data(), wide->size()); }};
            const std::string suffix = std::string("/") + name + (size > 1024 ? "/1 MB" : "/1 KB");
            addComparison(
                "decode" + suffix, [text] { decode(text); },
                {memcpyBaseline,
                 {"ICU",
                  [text] {
                      convert<char16_t>(text.size(), [&](char16_t* out) { return decodeWithIcu(text, out); });
                  }},
                 {"plain", [text] {
                      convert<char16_t>(text.size(), [&](char16_t* out) { return decodePlainly(text, out); });
                  }}});
            addComparison(
                "encode" + suffix, [string] { benchmark::DoNotOptimize(string.toUtf8().constData()); },
                {memcpyBaseline,
                 {"ICU",
                  [units] {
                      convert<char>(units.size() * 3, [&](char* out) { return encodeWithIcu(units, out); });
                  }},
                 {"plain", [units] {
                      convert<char>(units.size() * 3, [&](char* out) { return encodePlainly(units, out); });
                  }}});
            const std::u16string sameSize =
                (units + units).substr(0, size / 2); // none has fewer than a third
            const CZeString latin1Text =
                CZeString::fromUtf16(sameSize.data(), static_cast<int>(sameSize.size()));
            addComparison("to Latin-1" + suffix,
                          [latin1Text] { benchmark::DoNotOptimize(latin1Text.toLatin1().constData()); },
                          {{"plain", [sameSize] {
                                convert<char>(sameSize.size(),
                                              [&](char* out) { return narrowPlainly(sameSize, out); });
                            }}});
        }
    }
    return runComparisons(argc, argv);
}
