// Copies of one container on several threads. The thread sanitizer is the judge of the rest.

#include "tests/core/text.h"

#include <gmock/gmock.h>

#include <thread>
#include <vector>

namespace {

TEST(Sharing, CopiesLiveOnDifferentThreads) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 500;
    const CZeString string = text(u"one block, many owners");
    const CZeByteArray array("one block, many owners");
    const CZeStringList list = string.split(' ');
    std::vector<int> failures(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        // Each thread starts from copies of its own, and the last owner of a block may be any of them.
        threads.emplace_back([t, string, array, list, &failures] {
            for (int i = 0; i < kRounds; ++i) {
                CZeString s = string;
                CZeByteArray b = array;
                CZeStringList l = list;
                s.append(CZeChar(static_cast<char>('a' + t)));
                b[0] = static_cast<char>('a' + t);
                l.append(s);
                failures[static_cast<size_t>(t)] +=
                    s.size() != string.size() + 1 || s.at(s.size() - 1) != static_cast<char>('a' + t) ||
                    b[0] != static_cast<char>('a' + t) || array[0] != 'o' || l.size() != list.size() + 1;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(failures, std::vector<int>(kThreads));
    EXPECT_EQ(utf8(string), "one block, many owners");
    EXPECT_EQ(list, string.split(' '));
}

} // namespace
