// Every allocation of every operation fails once: a change then leaves everything as it was, what makes
// something new gives nothing, and no block is lost.

#include "core/codecs/text_codec.h"
#include "core/io/dir.h"
#include "core/io/file.h"
#include "core/io/resource_info.h"
#include "core/io/save_file.h"
#include "core/threads/object.h"
#include "core/threads/thread.h"
#include "core/tools/compression.h"
#include "log/log_settings.h"
#include "tests/core/test_file.h"
#include "tests/core/text.h"
#include "tests/support/failing_memory.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <string>
#include <thread>

namespace {

using testing::Contains;

/// Calls `attempt` with the first allocation failing, then the second and so on, until it needs no more;
/// first with that one alone, then with all from it on. `attempt` takes a function that runs work under this
/// condition and returns whether an allocation failed. Returns how many did.
template <class Attempt>
int forEachFailure(Attempt attempt) {
    int failures = 0;
    for (const bool failsOn : {false, true}) {
        bool hasFailed = false;
        int n = 0;
        do {
            const int blocks = t_memory.blocks;
            ++n;
            t_memory.failsOn = failsOn;
            attempt([&](auto work) {
                hasFailed = t_memory.run(n, work);
                return hasFailed;
            });
            EXPECT_EQ(t_memory.blocks, blocks) << "with allocation " << n << " failing";
            failures += hasFailed;
        } while (hasFailed);
    }
    return failures;
}

/// A change to an object that owns its block, shares it, or wraps foreign memory.
template <class Text>
void expectAllOrNothing(const std::function<Text()>& makeOwn, const std::function<void(Text&)>& change) {
    Text expected = makeOwn();
    change(expected);
    int failures = 0;
    for (const bool isShared : {false, true}) {
        failures += forEachFailure([&](auto underFailure) {
            const Text before = makeOwn();
            Text subject = isShared ? before : makeOwn();
            const bool hasFailed = underFailure([&] { change(subject); });
            EXPECT_EQ(subject, hasFailed && subject != expected ? makeOwn() : expected);
            EXPECT_EQ(before, makeOwn());
            if constexpr (requires { subject.resize(0); }) {
                subject.resize(subject.size() + 1); // it serves on
                EXPECT_EQ(subject.constData()[subject.size()], '\0');
            }
        });
    }
    EXPECT_GT(failures, 0);
}

template <class Result>
bool isNothing(const Result& result) {
    if constexpr (requires { result.isNull(); })
        return result.isNull();
    else if constexpr (requires { result.isEmpty(); })
        return result.isEmpty();
    else
        return !result.has_value();
}

template <class Make>
void expectResultOrNothing(int row, Make make) {
    const auto expected = make();
    const int failures = forEachFailure([&](auto underFailure) {
        auto result = std::decay_t<decltype(expected)>();
        const bool hasFailed = underFailure([&] { result = make(); });
        EXPECT_TRUE(result == expected || (hasFailed && isNothing(result))) << row;
    });
    EXPECT_GT(failures, 0) << row;
}

/// A search as a result that can be nothing.
std::optional<int> found(int position) {
    return position < 0 ? std::nullopt : std::optional(position);
}

CZeString sample() {
    return text(u"one two three");
}

struct AllocationFailure : testing::Test {
    AllocationFailure() { t_memory.includesNew = false; } // the tests use it for what they compare with
};

TEST_F(AllocationFailure, LeavesAStringAsItWas) {
    const std::function<void(CZeString&)> changes[] = {
        // clang-format off
        [](auto& s) { s.append(CZeChar('x')); }, [](auto& s) { s.append(s.midRef(4, 3)); },
        [](auto& s) { s.insert(30, CZeLatin1String("x")); }, [](auto& s) { s.resize(40, 'x'); },
        [](auto& s) { s.truncate(2); }, [](auto& s) { s.reserve(70); },
        [](auto& s) { s.fill('x', 60); }, [](auto& s) { s.reallocData(8, false); },
        [](auto& s) { CZeChar none; *(s.data() ? s.data() : &none) = 'x'; },
        [](auto& s) { s.append(CZeChar('x')).utf16(); }, [](auto& s) { s.remove(1, 3); },
        [](auto& s) { s.replace(CZeLatin1String("t"), CZeLatin1String("xyz")); }, // by more
        [](auto& s) { s.replace(sample().mid(3, 5), text(u"")); }, // by less
        [](auto& s) { s.replace(s.midRef(0, 1), s.midRef(4, 9)); },
        [](auto& s) { s.replace(2, 1, CZeLatin1String("a longer text")); },
        [](auto& s) { s.replace(2, 9, s.midRef(1, 2)); },
        // clang-format on
    };
    const CZeString foreign = sample();
    for (const auto& change : changes) {
        SCOPED_TRACE(&change - changes);
        expectAllOrNothing<CZeString>([] { return sample() + CZeChar('.'); }, change);
        expectAllOrNothing<CZeString>(
            [&] { return CZeString::fromRawData(foreign.unicode(), foreign.size()); }, change);
    }
}

TEST_F(AllocationFailure, LeavesAByteArrayAsItWas) {
    const std::function<void(CZeByteArray&)> changes[] = {
        // clang-format off
        [](auto& b) { b = "a text that is longer than before"; }, [](auto& b) { b = b.constData() + 1; },
        [](auto& b) { b.resize(9); b.resize(8); }, [](auto& b) { b.truncate(1); },
        [](auto& b) { b.reallocData(100, SZeArrayData::ReserveCapacity); },
        [](auto& b) { char none; *(b.data() ? b.data() : &none) = 'x'; },
        // clang-format on
    };
    for (const auto& change : changes) {
        SCOPED_TRACE(&change - changes);
        expectAllOrNothing<CZeByteArray>([] { return CZeByteArray("contents"); }, change);
    }
}

TEST_F(AllocationFailure, GivesNothingInPlaceOfSomethingNew) {
    const CZeString s = sample(), pattern = text(u"%1, %1"), wide = text(u"一二三 < é 😀"), num = text(u"-42");
    const CZeByteArray utf8Bytes = wide.toUtf8();
    const CZeLatin1String latin1("two");
    const char32_t codePoints[] = {U'一', U'😀', 0};
    bool ok = false;
    int row = 0;
    const auto check = [&row](auto... makes) { (expectResultOrNothing(row++, makes), ...); };
    check(
        // clang-format off
        [&] { return CZeString(3, 'x'); }, [&] { return CZeString(latin1); },
        [&] { return CZeString::fromRawData(s.unicode(), 3); }, [&] { return CZeString::fromUtf8(utf8Bytes); },
        [&] { return CZeString::fromUtf16(u"units"); }, [&] { return CZeString::fromUcs4(codePoints); },
        [&] { return wide.toUtf8(); }, [&] { return s.toUtf8(); }, [&] { return wide.toLatin1(); },
        [&] { return CZeString(wide.unicode(), 3).toLatin1(); }, [&] { return wide.toUcs4(); },
        [&] { return s.mid(1, 3); }, [&] { return s.split(' '); }, [&] { return s.splitRef(' '); },
        [&] { return s.repeated(3); }, [&] { return s.leftJustified(20); }, [&] { return wide.toHtmlEscaped(); },
        [&] { return text(u"  a   b ").trimmed(); }, [&] { return text(u"  a   b ").simplified(); },
        [&] { return CZeString(s).toUpper(); }, [&] { return CZeString::number(42); },
        [&] { return CZeString::number(0.1); }, [&] { return pattern.arg(s); },
        [&] { return pattern.arg(latin1, -9); }, [&] { return pattern.arg(42); }, [&] { return pattern.arg(0.5); },
        [&] { return found(s.indexOf(latin1)); }, [&] { return found(s.lastIndexOf(latin1)); },
        [&] { return found(s.count(latin1) - 1); }, [&] { return found(s.startsWith(CZeLatin1String("o")) - 1); },
        [&] { return num.toShort(&ok) == -42 && ok ? std::optional(1) : std::nullopt; },
        [&] { return num.toFloat(&ok) == -42 && ok ? std::optional(1) : std::nullopt; },
        [&] { return CZeByteArray("bytes"); }, [&] { return CZeByteArray(3, 'x'); },
        [&] { return CZeByteArray().setNum(1.5); }, [&] { return CZeByteArray("bytes").mid(1, 2); });
    // clang-format on
}

TEST_F(AllocationFailure, KeepsAListAndADecoder) {
    expectAllOrNothing<CZeStringList>([] { return sample().split(' '); },
                                      [](auto& list) { list.append(CZeString()); });
    CZeTextCodec::State begun;
    CZeTextCodec::decode(CZeTextCodec::Utf8, "a\xC3", 2, &begun);
    forEachFailure([&](auto underFailure) {
        CZeTextCodec::State state = begun;
        CZeString piece;
        const auto decode = [&] { piece = CZeTextCodec::decode(CZeTextCodec::Utf8, "\xA9", 1, &state); };
        if (underFailure(decode) && piece.isNull())
            decode();
        EXPECT_EQ(piece, text(u"é"));
    });
}

TEST_F(AllocationFailure, IsReportedByCompression) {
    const CZeByteArray bytes(9000, 'x');
    const CZeByteArray packed = ZeCompress(bytes.constData(), bytes.size());
    CZeByteArray understated = packed;
    understated.data()[2] = 0x01; // so that the room must grow
    const LogCapture log;
    expectResultOrNothing(0, [&] { return ZeCompress(bytes.constData(), bytes.size()); });
    expectResultOrNothing(1, [&] { return ZeUncompress(packed.constData(), packed.size()); });
    expectResultOrNothing(2, [&] { return ZeUncompress(understated.constData(), understated.size()); });
    EXPECT_THAT(log.texts(), Contains("ZeCompress: Z_MEM_ERROR: Not enough memory"));
    EXPECT_THAT(log.texts(), Contains("ZeUncompress: Input data is corrupted"));
}

class FileAllocationFailure : public testing::Test {
protected:
    FileAllocationFailure() {
        ZeSetLogFilter(0); // whose own failures are not the matter here
        t_memory.includesNew = true;
    }
    ~FileAllocationFailure() override { ZeSetLogFilter(3); }

    const TempDirectory directory;
    const std::string path = madeFile(directory / "file", "old");
    const CZeString file = name(path), other = name(directory / "other"), tree = name(directory / "tree");
    const CZeString resource = name(":/directory/resource");
};

TEST_F(FileAllocationFailure, IsTheReasonOfARefusal) {
    ASSERT_TRUE(CZeResourceInfo::registerResource(resource, CZeByteArray("old")));
    CZeString reason;
    const auto note = [&](bool isDone, const CZeIODevice& device) {
        reason = isDone ? CZeString() : device.errorString();
    };
    const std::function<void(CZeFile&, CZeSaveFile&)> works[] = {
        [&](auto& f, auto&) { note(f.open(Ze::ReadOnly) && f.readAll().size() == 3, f); },
        [&](auto& f, auto&) { note(f.open(Ze::ReadWrite) && f.map(0, 3), f); },
        [&](auto& f, auto&) { note(f.open(Ze::ReadWrite) && f.write("old", 3) == 3 && f.close(), f); },
        [&](auto&, auto& s) { note(s.open(Ze::WriteOnly) && s.write("old", 3) == 3 && s.commit(), s); },
        [&](auto& f, auto&) {
            f.setFileName(resource);
            note(f.open(Ze::ReadOnly) && f.readAll().size() == 3, f);
        },
    };
    for (const auto& work : works) {
        SCOPED_TRACE(&work - works);
        const int failures = forEachFailure([&](auto underFailure) {
            CZeFile f(file);
            CZeSaveFile s(file);
            const bool hasFailed = underFailure([&] { work(f, s); });
            EXPECT_TRUE(hasFailed || reason.isNull());
            EXPECT_TRUE(reason.isNull() || utf8(reason) == "Cannot allocate memory") << utf8(reason);
            EXPECT_EQ(contentOf(path), "old");
            reason.truncate(1); // in a copy, or the next reason would show it
            reason = CZeString();
        });
        EXPECT_GT(failures, 0);
    }
    EXPECT_EQ(listing(directory), "file ");
    EXPECT_TRUE(CZeResourceInfo::unregisterResource(resource));
}

TEST_F(FileAllocationFailure, LeavesTreesInOrder) {
    const CZeString sibling = name(":/directory/sibling");
    const int failures = forEachFailure([&](auto underFailure) {
        ASSERT_TRUE(CZeDir::mkpath(name(directory / "tree/a")));
        madeFile(directory / "tree/a/file", "");
        bool isRemoved = false, isAdded = false;
        size_t children = 0;
        underFailure([&] { isRemoved = CZeDir::removeRecursively(tree); });
        EXPECT_EQ(isRemoved, !std::filesystem::exists(directory / "tree"));
        EXPECT_TRUE(CZeDir::removeRecursively(tree));
        underFailure([&] { isAdded = CZeResourceInfo::registerResource(resource, CZeByteArray()); });
        EXPECT_EQ(CZeResourceInfo::find(resource).exists(), isAdded);
        EXPECT_TRUE(isAdded || CZeResourceInfo::registerResource(resource, CZeByteArray()));
        EXPECT_TRUE(CZeResourceInfo::registerResource(sibling, CZeByteArray()));
        const CZeResourceInfo parent = CZeResourceInfo::find(name(":/directory"));
        const bool hasFailed = underFailure([&] { children = parent.children().size(); });
        EXPECT_TRUE(children == 2 || (hasFailed && children == 0)) << children;
        EXPECT_TRUE(CZeResourceInfo::unregisterResource(resource));
        EXPECT_TRUE(CZeResourceInfo::unregisterResource(sibling));
    });
    EXPECT_GT(failures, 0);
}

TEST_F(FileAllocationFailure, CannotMeetWhatNeedsNoMemory) {
    ASSERT_TRUE(CZeResourceInfo::registerResource(resource, CZeByteArray()));
    const int failures = forEachFailure([&](auto underFailure) {
        CZeFile f(file), r(resource);
        underFailure([&] {
            EXPECT_TRUE(f.exists());
            EXPECT_TRUE(r.exists());
            EXPECT_EQ(f.size(), 3);
            EXPECT_TRUE(f.rename(other));
            EXPECT_TRUE(f.rename(file));
            EXPECT_TRUE(CZeDir::mkpath(tree));
            EXPECT_TRUE(CZeDir::rmdir(tree));
        });
    });
    EXPECT_EQ(failures, 0);
    EXPECT_TRUE(CZeResourceInfo::unregisterResource(resource));
}

TEST_F(FileAllocationFailure, IsReportedByObjectsAndThreads) {
    bool isDone = false;
    const auto attempt = [&](int n) { // on a thread that nothing is kept for yet
        auto event = std::make_unique<CZeEvent>(1);
        const bool hasFailed = t_memory.run(n, [&] {
            CZeObject object;
            CZeThread thread;
            isDone = object.post(std::move(event)) && object.startTimer(1) != 0 && object.handOver(thread) &&
                     thread.start();
        });
        EXPECT_NE(isDone, hasFailed) << n;
    };
    for (int n = 1; !isDone && n < 100; ++n)
        std::thread(attempt, n).join();
    EXPECT_TRUE(isDone);
}

} // namespace
